#include <gtest/gtest.h>

#include "tests/unit/port/Printer.h"

namespace quordalvane::test {
namespace {

class DataCancel : public testing::TestWithParam<std::int32_t> {};

TEST_P(DataCancel, SendsExactlyItsSixBytes) {
  const Outcome run = Scenario::in(GetParam()).run(startDataCancel());
  EXPECT_EQ(run.result, "true");
  EXPECT_EQ(run.wire(), "output.write <1b 1d 03 03 00 00> -> 6\n");
  EXPECT_EQ(run.records("startDataCancel"), "Start |\nEnd | -> 1\n");
}

TEST_P(DataCancel, FailsWhenTheCommandIsNotWritten) {
  Scenario scenario = Scenario::in(GetParam());
  scenario.script.writeReturns(1, -1);
  const Outcome run = scenario.run(startDataCancel());
  EXPECT_EQ(run.result, "false");
  EXPECT_EQ(run.records("startDataCancel"), text(R"(
    Start |
    Error | Fail to [self writeWithRetry:dataCancelCommand], <self>, <address>
    End | -> 0
  )"));
}

TEST_P(DataCancel, FailsIfTheCommandIsWrittenOnlyInPart) {
  Scenario scenario = Scenario::in(GetParam());
  scenario.script.takesInAttempts({4, 0}).isLostAfterBytes(4);
  EXPECT_EQ(scenario.run(startDataCancel()).result, "false");
  // The link takes 2 of the 6 bytes, then 2 of the remaining 4. The port stops now, because the
  // number of bytes sent equals the number of bytes offered in the last attempt: both are 4.
  scenario.script = Script().takesInAttempts({2, 2});
  EXPECT_EQ(scenario.run(startDataCancel()).result, "false");
}

INSTANTIATE_TEST_SUITE_P(Emulation, DataCancel,
                         testing::Values(unknownEmulation, lineMode, escPos));

}  // namespace
}  // namespace quordalvane::test
