// In the n-th run, the n-th call on the journal's files fails: an open, a write, a sync or a
// truncation.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <optional>
#include <string>

#include "tests/journal/FaultyStorage.h"
#include "tests/unit/journal/JournalCase.h"

namespace quordalvane {
namespace {

struct Setting {
  ZKEmulation emulation;
  bool andAllLater;
};

class StorageSweep : public JournalCase, public testing::WithParamInterface<Setting> {
 protected:
  /// Runs a job under a name on a disk that fails at the call with this number, and then checks the
  /// result of the next start on a sound disk. Returns false if the job made fewer calls.
  bool failAt(std::uint64_t call) {
    Till till(GetParam().emulation);
    std::filesystem::remove_all(folder.file(""));
    std::filesystem::create_directory(folder.file(""));
    std::optional<NamedJobResult> told;
    bool isReached = false;
    {
      const test::FaultyStorage disk(call, GetParam().andAllLater);
      try {
        told = print(till, "receipt 1");
      } catch (const JournalError& error) {
        EXPECT_THAT(error.what(), testing::HasSubstr(file));
        EXPECT_EQ(till.printed(), ByteBuffer()) << "an error, and yet it was sent";
      }
      isReached = disk.calls() >= call;
    }
    checkNextStart(till, told);
    return isReached;
  }

 private:
  void checkNextStart(Till& till, const std::optional<NamedJobResult>& told) {
    if (told) {
      EXPECT_EQ(told->result.outcome, PrintOutcome::Printed) << "the true outcome";
      EXPECT_EQ(till.printed(), receiptText);
    }
    till.port->open();  // a job whose beginning could not be recorded closes the port
    const auto next = print(till, "receipt 1");
    EXPECT_EQ(next.notRecorded, "") << "a sound disk";
    if (told && told->notRecorded.empty()) {
      EXPECT_TRUE(next.isRepeated) << "recorded, and forgotten";
    }
    if (next.result.outcome == PrintOutcome::Printed) {
      EXPECT_EQ(till.printed(), receiptText) << "printed is on paper, once";
    } else {
      EXPECT_EQ(next.result.outcome, PrintOutcome::Unconfirmed);
      ++unconfirmed;
    }
  }

 protected:
  int unconfirmed = 0;
};

TEST_P(StorageSweep, AJobEndsWithItsTrueOutcomeOrSendsNothingAndReportsAnError) {
  std::uint64_t call = 1;
  while (failAt(call) && !HasFailure()) {
    ++call;
  }
  EXPECT_FALSE(HasFailure()) << "at call " << call;
  EXPECT_GT(call, 20U);
  EXPECT_GT(unconfirmed, 0) << "no failure between the first byte and the outcome was tried";
  RecordProperty("cases", std::to_string(call - 1));
}

INSTANTIATE_TEST_SUITE_P(
    Disks, StorageSweep,
    testing::Values(Setting{ZKEmulationQuorLine, false}, Setting{ZKEmulationQuorLine, true},
                    Setting{ZKEmulationESCPOS, false}, Setting{ZKEmulationESCPOS, true}),
    [](const auto& setting) {
      return std::string(setting.param.emulation == ZKEmulationQuorLine ? "Line" : "EscPos") +
             (setting.param.andAllLater ? "FromThereOn" : "Once");
    });

}  // namespace
}  // namespace quordalvane
