// Journals that a disk has damaged: the file is too short, a part of a page was not written, or a
// kilobyte is zero.
#include <gtest/gtest.h>

#include <fstream>
#include <string>
#include <vector>

#include "tests/unit/journal/JournalCase.h"

namespace quordalvane {
namespace {

constexpr std::size_t kilobyte = 1024;
constexpr std::size_t pageSize = 4096;

std::string contentOf(const std::string& file) {
  std::ifstream stream(file, std::ios::binary);
  return {std::istreambuf_iterator<char>(stream), {}};
}

class DamagedJournal : public JournalCase {
 protected:
  DamagedJournal() {
    Till till(ZKEmulationQuorLine);
    for (int i = 0; i < 40; ++i) {
      print(till, "receipt " + std::to_string(i) + std::string(100, '.'));
    }
    older = contentOf(file);
    for (int i = 40; i < 50; ++i) {
      print(till, "receipt " + std::to_string(i) + std::string(100, '.'));
    }
    newer = contentOf(file);
    known = names();
  }

  std::vector<std::string> names() {
    std::vector<std::string> found;
    for (const JobRecord& job : Journal(file).jobs()) {
      found.push_back(job.name + (job.state == JobState::Printed ? " printed" : " not"));
    }
    return found;
  }

  /// The answer is an error; or, if the changed bytes are not used, the same answer as for the
  /// undamaged file.
  void check(const std::string& content, const std::string& what) {
    std::ofstream(file, std::ios::binary | std::ios::trunc) << content;
    try {
      EXPECT_EQ(names(), known) << what;
    } catch (const JournalError& error) {
      EXPECT_NE(std::string(error.what()).find(file + ": "), std::string::npos) << error.what();
      ++refused;
    }
    ++cases;
  }

  std::string older;
  std::string newer;
  std::vector<std::string> known;
  std::size_t refused = 0;
  std::size_t cases = 0;
};

TEST_F(DamagedJournal, IsRefusedIfItsFileIsCutAtAnyKilobyte) {
  for (std::size_t size = 0; size < newer.size(); size += kilobyte) {
    check(newer.substr(0, size), "cut at " + std::to_string(size));
  }
  EXPECT_EQ(refused, cases);
  EXPECT_GT(cases, 20U);
  RecordProperty("cases", std::to_string(cases));
}

TEST_F(DamagedJournal, NeverGivesAWrongAnswerIfAPageIsHalfWritten) {
  older.resize(newer.size(), '\0');
  for (std::size_t at = 0; at < newer.size(); at += kilobyte) {
    const std::size_t page = at / pageSize * pageSize;
    const std::string begun = newer.substr(0, at) + older.substr(at, page + pageSize - at) +
                              newer.substr(page + pageSize);
    const std::string ended =
        newer.substr(0, page) + older.substr(page, at - page) + newer.substr(at);
    for (const auto& torn : {begun, ended}) {
      if (torn != newer) {
        check(torn, "torn at " + std::to_string(at));
      }
    }
  }
  EXPECT_GT(refused, cases / 2);
  RecordProperty("cases", std::to_string(cases));
}

TEST_F(DamagedJournal, NeverGivesAWrongAnswerIfAKilobyteIsZero) {
  for (std::size_t at = 0; at < newer.size(); at += kilobyte) {
    std::string content = newer;
    content.replace(at, kilobyte, kilobyte, '\0');
    if (content != newer) {
      check(content, "zeros at " + std::to_string(at));
    }
  }
  EXPECT_GT(refused, cases / 2);
  RecordProperty("cases", std::to_string(cases));
}

}  // namespace
}  // namespace quordalvane
