#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <string>

#include "journal/Journal.h"
#include "journal/NamedJob.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/unit/job/Till.h"

namespace quordalvane {

/// A test with a journal in a folder of its own. Its functions use the journal as a till does.
class JournalCase : public testing::Test {
 protected:
  const test::TemporaryFolder folder;
  const std::string file = folder.file("jobs.db");

  static NamedJobRequest request(const std::string& name, bool again = false) {
    return {.name = name,
            .device = "virtual:",
            .again = again,
            .timeout = std::chrono::milliseconds(0)};
  }

  /// Prints under a name as a program does: opens the journal, prints, and returns the outcome.
  NamedJobResult print(Till& till, const std::string& name, bool again = false,
                       const ByteBuffer& data = receiptText) {
    Journal journal(file);
    NamedJob named(journal, request(name, again), data);
    if (named.answer()) {
      return *named.answer();
    }
    PrintJob job(till.port, named.recorded());
    return named.run(job);
  }

  JobRecord onlyJob() {
    const auto jobs = Journal(file).jobs();
    EXPECT_EQ(jobs.size(), 1U);
    return jobs.empty() ? JobRecord{} : jobs.front();
  }
};

/// The text of the error that a function throws; "" if it throws no such error.
template <typename Error>
std::string errorOf(const std::function<void()>& action) {
  try {
    action();
  } catch (const Error& error) {
    return error.what();
  }
  return "";
}

}  // namespace quordalvane
