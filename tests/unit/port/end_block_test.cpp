#include <gtest/gtest.h>

#include "tests/unit/port/Steps.h"

namespace quordalvane::test {
namespace {

const std::string method = "endCheckedBlock:level:";

TEST(EndBlockInLineMode, SucceedsWithoutASleepIfTheCounterIsAlready2) {
  const Outcome run = lineModePrinter(lineStatus({}, 2)).run(endCheckedBlock(5));
  EXPECT_EQ(run.result, "true");
  EXPECT_EQ(run.wire(),
            written(lineEtb) + written(dataCancelEnd) + lineStatusAsked(lineStatus({}, 2)));
  EXPECT_EQ(run.records(method), text(R"(
    Start | <status>, 5
    Process | p_emulation: 1
    Process | quorPrinterStatus->etbCounter: 2
    End | <status>, 5, -> 1
  )"));
  EXPECT_EQ(run.records("getParsedStatus:level:").substr(0, 20), "Start | <status>, 5\n");
}

TEST(EndBlockInLineMode, DoesNotWaitForAnAnswerToItsEndMarks) {
  Scenario scenario = lineModePrinter(lineStatus({}, 2));
  scenario.script.expects = Script::Expects::WhereAsked;
  const Outcome run = scenario.run(inTurn({startDataCancel(), endCheckedBlock()}));
  EXPECT_EQ(run.result, "true; true");
  EXPECT_EQ(run.wire().find("slice"), std::string::npos) << run.wire();
}

TEST(EndBlockInLineMode, WaitsForLateAnswersToEarlierRequests) {
  Scenario scenario = lineModePrinter(lineStatus({}, 2));
  scenario.script.expects = Script::Expects::WhereAsked;
  const Outcome run = scenario.run(inTurn({write(bytes("41")), endCheckedBlock()}));
  EXPECT_EQ(run.result, "1; true");
  EXPECT_NE(run.wire().find("slice for input 0.1"), std::string::npos) << run.wire();
}

TEST(EndBlockInLineMode, SucceedsIfThePrinterIsOffLine) {
  const Outcome run = lineModePrinter(lineStatus({offlineFlag}, 1)).run(endCheckedBlock());
  EXPECT_EQ(run.result, "true");
  EXPECT_EQ(run.caller.status.offline, 1U);
  EXPECT_TRUE(run.records(method).ends_with(
      "Process | quorPrinterStatus->offline: 1\nEnd | <status>, 5, -> 1\n"));
}

TEST(EndBlockInLineMode, WaitsUntilTheCounterIsExactly2) {
  Scenario scenario = Scenario::in(lineMode);
  for (const unsigned counter : {0U, 1U, 2U}) {
    scenario.script.whenAsked(lineRequest, whole(lineStatus({}, counter)));
  }
  const Outcome run = scenario.run(endCheckedBlock());
  EXPECT_EQ(run.result, "true");
  EXPECT_NE(run.wire().find("select 100000\n"), std::string::npos);
}

TEST(EndBlockInLineMode, FailsForEveryCounterOtherThan2) {
  for (const unsigned counter : {0U, 1U, 3U, 4U, 130U, 255U}) {
    Scenario scenario = lineModePrinter(lineStatus({}, counter));
    scenario.endMillis = 1000;
    const Outcome run = scenario.run(endCheckedBlock());
    EXPECT_EQ(run.result, "false") << counter;
    EXPECT_THAT(run.records(method), timedOut("timeoutSec", 1, 2));
  }
}

TEST(EndBlockInLineMode, HasItsOwnTimeout) {
  Scenario scenario = lineModePrinter(lineStatus({}, 1), 60000);
  scenario.endMillis = 2000;
  EXPECT_THAT(scenario.run(endCheckedBlock()).records(method), timedOut("timeoutSec", 2, 3));
}

TEST(EndBlockInLineMode, HasTheTimeoutOfThePortByDefault) {
  const Outcome run = lineModePrinter(lineStatus({}, 1), 1000).run(endCheckedBlock());
  EXPECT_THAT(run.records(method), timedOut("timeoutSec", 1, 2));
}

TEST(EndBlockInLineMode, MeasuresItsTimeoutFromBeforeTheEtb) {
  Scenario scenario = lineModePrinter(lineStatus({}, 1));
  scenario.endMillis = 1000;
  scenario.script.takesInAttempts(
      std::vector<std::size_t>(10, 0));  // the write of the ETB takes 1.5 s
  const Outcome run = scenario.run(endCheckedBlock());
  EXPECT_THAT(run.records(method), timedOut("timeoutSec", 1, 2));
}

TEST(EndBlockInLineMode, TreatsATimeoutBelow1000MillisecondsAs0Seconds) {
  Scenario scenario = lineModePrinter(lineStatus({}, 1));
  scenario.endMillis = 999;
  scenario.script.startsPastTheSecond(850000);
  const Outcome run = scenario.run(endCheckedBlock());
  EXPECT_THAT(run.records(method), timedOut("timeoutSec", 0, 1));
}

TEST(EndBlockInLineMode, AsksAgainAfterAFailedStatus) {
  Scenario scenario = Scenario::in(lineMode);
  scenario.script.whenAsked(lineRequest, {})
      .whenAsked(lineRequest, {})
      .whenAsked(lineRequest, whole(lineStatus({}, 2)));
  const Outcome run = scenario.run(endCheckedBlock());
  EXPECT_EQ(run.result, "true");
  EXPECT_NE(run.wire().find("usleep 100000\n"), std::string::npos);
  EXPECT_EQ(run.wire().find("select"), std::string::npos);
}

TEST(EndBlockInLineMode, FailsIfEveryStatusFailsUntilTheTimeout) {
  Scenario scenario = Scenario::in(lineMode);
  scenario.endMillis = 2000;
  const Outcome run = scenario.run(endCheckedBlock());
  EXPECT_EQ(run.result, "false");
  EXPECT_THAT(run.records(method), timedOut("timeoutSec", 2, 3));
}

TEST(EndBlockInLineMode, PassesOnTheExceptionOfTheStatusRequest) {
  Scenario scenario = lineModePrinter();
  scenario.script.isLostAfterBytes(8);
  const Outcome run = scenario.run(endCheckedBlock());
  EXPECT_EQ(run.result, "PortException: Native WritePort failed");
  EXPECT_EQ(run.records(method), "Start | <status>, 5\nProcess | p_emulation: 1\n");
}

TEST(EndBlockInLineMode, DoesNotTimeOutWhenTheClockIsSetBack) {
  Scenario scenario = Scenario::in(lineMode);
  scenario.endMillis = 0;
  scenario.script.whenAsked(lineRequest, whole(lineStatus({}, 1)))
      .whenAsked(lineRequest, whole(lineStatus({}, 2)))
      .stepsClock(2, -3600);
  EXPECT_EQ(scenario.run(endCheckedBlock()).result, "true");
}

class EndBlock : public testing::TestWithParam<std::int32_t> {};

TEST_P(EndBlock, FailsWhenTheEtbCannotBeSent) {
  Scenario scenario = Scenario::in(GetParam());
  scenario.script.isLost();
  const Outcome run = scenario.run(endCheckedBlock());
  EXPECT_EQ(run.result, "false");
  EXPECT_THAT(run.records(method),
              failedBy("Fail to [self writeWithRetry:etbCommand]: <self>, <address>"));
}

TEST_P(EndBlock, FailsWhenTheCommandThatEndsDataCancelCannotBeSent) {
  Scenario scenario = Scenario::in(GetParam());
  scenario.script.writeReturns(2, -1);
  const Outcome run = scenario.run(endCheckedBlock());
  EXPECT_EQ(run.result, "false");
  EXPECT_THAT(run.records(method),
              failedBy("Fail to [self writeWithRetry:dataCancelEndCommand]: <self>, <address>"));
}

INSTANTIATE_TEST_SUITE_P(Emulation, EndBlock, testing::Values(unknownEmulation, lineMode, escPos));

}  // namespace
}  // namespace quordalvane::test
