#include <gtest/gtest.h>

#include "tests/unit/port/Steps.h"

namespace quordalvane::test {
namespace {

const std::string method = "beginCheckedBlock:level:resultCode:";

TEST(BeginBlockInLineMode, SendsAllCommandsWithoutASleep) {
  Scenario scenario = lineModePrinter();
  scenario.dataTimeoutSeconds = 10;
  const Outcome run = scenario.run(beginCheckedBlock(5));
  EXPECT_EQ(run.result, "true");
  EXPECT_EQ(run.caller.resultCode, 0);
  EXPECT_EQ(run.wire(), lineStatusAsked() + written(lineCounterReset) + lineStatusAsked() +
                            written(bytes("1b 1d 03 05 01 0a")) + written(dataCancel));
  EXPECT_EQ(run.records(method), text(R"(
    Start | <status>, 5
    Process | p_emulation: 1
    Error | self.dataTimeoutSeconds: 10
    End | <status>, 5, -> 1
  )"));
  EXPECT_NE(run.records("getParsedStatus:level:").find("Start | <status>, 2\n"), std::string::npos)
      << "line mode always asks for level 2";
}

TEST(BeginBlockInLineMode, DoesNotWaitAfterACommandThatIsNeverAnswered) {
  Scenario scenario = lineModePrinter();
  scenario.dataTimeoutSeconds = 10;
  scenario.script.expects = Script::Expects::WhereAsked;
  const Outcome run = scenario.run(inTurn({beginCheckedBlock(), getParsedStatus()}));
  EXPECT_EQ(run.result, "true; true");
  EXPECT_EQ(run.wire().find("slice"), std::string::npos) << run.wire();
}

TEST(BeginBlockInLineMode, SendsNothingToAPrinterThatIsOffLine) {
  const Outcome run = lineModePrinter(lineStatus({offlineFlag})).run(beginCheckedBlock());
  EXPECT_EQ(run.result, "true");
  EXPECT_EQ(run.caller.resultCode, -1);
  EXPECT_EQ(run.sent(), lineRequest);
  EXPECT_EQ(run.records(method), text(R"(
    Start | <status>, 5
    Process | p_emulation: 1
    Process | status->offline: 1
    End | <status>, 5, -> 1
  )"));
}

TEST(BeginBlockInLineMode, FailsIfTheFirstStatusIsMissing) {
  const Outcome run = Scenario::in(lineMode).run(beginCheckedBlock());
  EXPECT_EQ(run.result, "false");
  EXPECT_EQ(run.caller.resultCode, -1);
  EXPECT_EQ(run.records(method), text(R"(
    Start | <status>, 5
    Process | p_emulation: 1
    Error | Fail to [self getParsedStatus:status level:2]: <self>, <status>, 2
    End | <status>, 5, -> 0
  )"));
}

TEST(BeginBlockInLineMode, SetsTheResultCodeToFailedIfTheStatusThrows) {
  Scenario scenario = lineModePrinter();
  scenario.script.isLost();
  const Outcome run = scenario.run(beginCheckedBlock());
  EXPECT_EQ(run.result, "PortException: Native WritePort failed");
  EXPECT_EQ(run.caller.resultCode, -1);
  EXPECT_EQ(run.records(method), "Start | <status>, 5\nProcess | p_emulation: 1\n")
      << "an exception that passes through leaves no exit record";
}

TEST(BeginBlockInLineMode, FailsWhenTheCounterCannotBeReset) {
  Scenario scenario = lineModePrinter();
  scenario.script.writeReturns(2, -1);
  const Outcome run = scenario.run(beginCheckedBlock());
  EXPECT_EQ(run.result, "false");
  EXPECT_EQ(run.caller.resultCode, -1);
  EXPECT_NE(run.records(method).find(
                "Error | Fail to [self writeWithRetry:etbResetCommand]: <self>, <address>\n"),
            std::string::npos);
}

TEST(BeginBlockInLineMode, FailsIfTheLinkIsLostBeforeTheWaitForTheCounter) {
  Scenario scenario = lineModePrinter();
  scenario.script.isLostAfterBytes(13 + 4);
  const Outcome run = scenario.run(beginCheckedBlock());
  EXPECT_EQ(run.result, "false");
  EXPECT_EQ(run.caller.resultCode, -1);
  EXPECT_THAT(run.records(method), failedBy("self.isConnected: 0"));
}

TEST(BeginBlockInLineMode, LogsALostConnectionWithTheResultOfASecondCheck) {
  Scenario scenario = lineModePrinter();
  // The first status checks the connection six times, and the reset of the counter twice.
  std::vector<bool> answers(6 + 2, true);
  answers.push_back(false);
  answers.push_back(true);
  scenario.script.saysConnected(answers);
  const Outcome run = scenario.run(beginCheckedBlock());
  EXPECT_EQ(run.result, "false") << run.all();
  EXPECT_THAT(run.records(method), failedBy("self.isConnected: 1"));
}

TEST(BeginBlockInLineMode, WaitsUntilTheCounterIs0) {
  Scenario scenario = Scenario::in(lineMode);
  scenario.script.whenAsked(lineRequest, whole(lineStatus({}, 9)))
      .whenAsked(lineRequest, whole(lineStatus({}, 9)))
      .whenAsked(lineRequest, whole(lineStatus({}, 0)));
  const Outcome run = scenario.run(beginCheckedBlock());
  EXPECT_EQ(run.result, "true");
  EXPECT_EQ(run.caller.resultCode, 0);
  EXPECT_NE(run.wire().find("select 50000\n"), std::string::npos);
}

TEST(BeginBlockInLineMode, FailsWhenTheCounterIsNot0WithinTheTimeout) {
  const Outcome run = lineModePrinter(lineStatus({}, 1), 1000).run(beginCheckedBlock());
  EXPECT_EQ(run.result, "false");
  EXPECT_EQ(run.caller.resultCode, -1);
  EXPECT_THAT(run.records(method), timedOut("waitTimeout", 1, 2));
}

TEST(BeginBlockInLineMode, FailsWithCodeMinus3IfThePaperIsNotTakenInTime) {
  Scenario scenario = lineModePrinter(lineStatus({paperPresentFlag}), 60000);
  scenario.holdMillis = 2999;
  const Outcome run = scenario.run(beginCheckedBlock());
  EXPECT_EQ(run.result, "false");
  EXPECT_EQ(run.caller.resultCode, -3);
  EXPECT_THAT(run.records(method), timedOut("waitTimeout", 2, 3));
}

TEST(BeginBlockInLineMode, SucceedsIfThePaperIsTakenBeforeTheTimeout) {
  Scenario scenario = Scenario::in(lineMode);
  scenario.holdMillis = 5000;
  scenario.script.whenAsked(lineRequest, whole(lineStatus({paperPresentFlag})))
      .whenAsked(lineRequest, whole(lineStatus({paperPresentFlag})))
      .whenAsked(lineRequest, whole(lineStatus()));
  const Outcome run = scenario.run(beginCheckedBlock());
  EXPECT_EQ(run.result, "true");
  EXPECT_EQ(run.caller.resultCode, 0);
}

TEST(BeginBlockInLineMode, UsesTheBeginTimeoutAgainAfterThePaperIsTaken) {
  Scenario scenario = Scenario::in(lineMode, 1000);
  scenario.holdMillis = 10000;
  scenario.script.whenAsked(lineRequest, whole(lineStatus()));
  for (int pass = 0; pass < 20; ++pass) {
    scenario.script.whenAsked(lineRequest, whole(lineStatus({paperPresentFlag})));
  }
  scenario.script.wheneverAsked(lineRequest, whole(lineStatus({}, 1)));
  const Outcome run = scenario.run(beginCheckedBlock());
  EXPECT_EQ(run.result, "false");
  EXPECT_EQ(run.caller.resultCode, -1)
      << "the paper was taken late, and the counter was not 0 then";
  EXPECT_THAT(run.records(method), timedOut("waitTimeout", 1, 3));
}

TEST(BeginBlockInLineMode, SucceedsIfThePrinterBecomesOffLineDuringTheWait) {
  Scenario scenario = Scenario::in(lineMode);
  scenario.script.whenAsked(lineRequest, whole(lineStatus({}, 1)))
      .whenAsked(lineRequest, whole(lineStatus({offlineFlag, paperPresentFlag}, 1)));
  const Outcome run = scenario.run(beginCheckedBlock());
  EXPECT_EQ(run.result, "true");
  EXPECT_EQ(run.caller.resultCode, 0);
  EXPECT_EQ(run.caller.status.offline, 1U);
}

TEST(BeginBlockInLineMode, AsksAgainAfterAFailedStatus) {
  Scenario scenario = Scenario::in(lineMode);
  scenario.script.whenAsked(lineRequest, whole(lineStatus()))
      .whenAsked(lineRequest, {})
      .whenAsked(lineRequest, {})
      .wheneverAsked(lineRequest, whole(lineStatus()));
  const Outcome run = scenario.run(beginCheckedBlock());
  EXPECT_EQ(run.result, "true");
  EXPECT_EQ(run.caller.resultCode, 0);
  EXPECT_EQ(run.wire().find("select"), std::string::npos) << "it sleeps with usleep here";
}

TEST(BeginBlockInLineMode, FailsIfEveryStatusFailsUntilTheTimeout) {
  Scenario scenario = Scenario::in(lineMode, 3000);
  scenario.script.whenAsked(lineRequest, whole(lineStatus()));
  const Outcome run = scenario.run(beginCheckedBlock());
  EXPECT_EQ(run.result, "false");
  EXPECT_EQ(run.caller.resultCode, -1);
  EXPECT_THAT(run.records(method), timedOut("timeoutSec", 3, 6));
}

TEST(BeginBlockInLineMode, MeasuresItsTimeoutFromTheCounterReset) {
  Scenario scenario = Scenario::in(lineMode, 1000);
  scenario.script.whenAsked(lineRequest, {{lineStatus(), 1.4}})
      .wheneverAsked(lineRequest, whole(lineStatus({}, 1)));
  const Outcome run = scenario.run(beginCheckedBlock());
  EXPECT_THAT(run.records(method), timedOut("waitTimeout", 1, 3, 1));
}

TEST(BeginBlockInLineMode, TreatsATimeoutBelow1000MillisecondsAs0Seconds) {
  Scenario scenario = lineModePrinter(lineStatus({}, 1), 999);
  scenario.script.startsPastTheSecond(600000);
  const Outcome run = scenario.run(beginCheckedBlock());
  EXPECT_EQ(run.caller.resultCode, -1);
  EXPECT_THAT(run.records(method), timedOut("waitTimeout", 0, 1));
}

TEST(BeginBlockInLineMode, DoesNotTimeOutWhenTheClockIsSetBack) {
  Scenario scenario = Scenario::in(lineMode, 0);
  for (const unsigned counter : {1U, 1U, 0U}) {
    scenario.script.whenAsked(lineRequest, whole(lineStatus({}, counter)));
  }
  scenario.script.stepsClock(6, -1);
  EXPECT_EQ(scenario.run(beginCheckedBlock()).result, "true");
}

class BeginBlock : public testing::TestWithParam<std::int32_t> {
 protected:
  static Scenario printer() { return GetParam() == lineMode ? lineModePrinter() : escPosPrinter(); }

  /// The number of writes before the data time-out.
  static std::size_t writesBefore() { return GetParam() == lineMode ? 3 : 5; }
};

TEST_P(BeginBlock, SendsNoDataTimeoutIfTheSettingIsNegative) {
  for (const std::int64_t seconds : {std::int64_t{-1}, INT64_MIN}) {
    Scenario scenario = printer();
    scenario.dataTimeoutSeconds = seconds;
    const Outcome run = scenario.run(beginCheckedBlock());
    EXPECT_EQ(run.result, "true");
    EXPECT_EQ(run.wire().find("1b 1d 03 05"), std::string::npos);
    EXPECT_TRUE(run.wire().ends_with(written(dataCancel)));
    EXPECT_EQ(run.records(method).find("dataTimeoutSeconds"), std::string::npos);
  }
}

TEST_P(BeginBlock, SendsTheLowByteOfTheDataTimeoutSetting) {
  const std::pair<std::int64_t, std::uint8_t> rows[] = {
      {0, 0x00}, {255, 0xff}, {256, 0x00}, {300, 0x2c}, {INT64_MAX, 0xff}};
  for (const auto& [seconds, byte] : rows) {
    Scenario scenario = printer();
    scenario.dataTimeoutSeconds = seconds;
    const Outcome run = scenario.run(beginCheckedBlock());
    EXPECT_NE(run.wire().find("output.write " + shown(bytes("1b 1d 03 05 01") + Bytes{byte})),
              std::string::npos);
    EXPECT_NE(
        run.records(method).find("Error | self.dataTimeoutSeconds: " + std::to_string(seconds)),
        std::string::npos);
  }
}

TEST_P(BeginBlock, ThrowsWhenTheDataTimeoutCannotBeSet) {
  Scenario scenario = printer();
  scenario.dataTimeoutSeconds = 7;
  scenario.script.writeReturns(writesBefore() + 1, -1);
  const Outcome run = scenario.run(beginCheckedBlock());
  EXPECT_EQ(run.result, "PortException: [beginCheckedBlock] Failed to set data cancel timeout");
  EXPECT_EQ(run.caller.resultCode, -1);
  EXPECT_TRUE(run.records(method).ends_with(
      "Error | Fail to [self writeWithRetry:setDataTimeoutCommandData]: <self>, <address>\n"
      "End | <status>, 5\n"));
}

TEST_P(BeginBlock, FailsWhenTheDataCancelCannotBeSent) {
  Scenario scenario = printer();
  scenario.script.writeReturns(writesBefore() + 1, -1);
  const Outcome run = scenario.run(beginCheckedBlock());
  EXPECT_EQ(run.result, "false");
  EXPECT_EQ(run.caller.resultCode, -1);
  EXPECT_THAT(run.records(method),
              failedBy("Fail to [self writeWithRetry:dataCancelCommand]: <self>, <address>"));
}

INSTANTIATE_TEST_SUITE_P(Emulation, BeginBlock, testing::Values(lineMode, escPos));

TEST(BeginBlockInEscPos, SendsACounterResetThenStatusRequestsThenADataCancel) {
  const Outcome run = escPosPrinter().run(beginCheckedBlock(5));
  EXPECT_EQ(run.result, "true");
  EXPECT_EQ(run.caller.resultCode, 0);
  EXPECT_EQ(run.wire(), written(escPosCounterReset) + escPosStatusAsked() + written(dataCancel));
  EXPECT_EQ(run.records("getParsedStatus:level:").substr(0, 20), "Start | <status>, 5\n");
}

TEST(BeginBlockInEscPos, SucceedsEvenIfThePrinterIsOffLine) {
  const Outcome run = escPosPrinter("1a").run(beginCheckedBlock());
  EXPECT_EQ(run.result, "true");
  EXPECT_EQ(run.caller.resultCode, 0);
  EXPECT_EQ(run.caller.status.offline, 1U);
}

TEST(BeginBlockInEscPos, SucceedsEvenIfTheStatusIsInvalid) {
  const Outcome run = escPosPrinter("00").run(beginCheckedBlock());
  EXPECT_EQ(run.result, "true");
  EXPECT_EQ(run.caller.resultCode, 0);
}

TEST(BeginBlockInEscPos, FailsIfTheLinkIsLostAfterTheCounterReset) {
  Scenario scenario = escPosPrinter();
  scenario.script.isLostAfterBytes(6);
  const Outcome run = scenario.run(beginCheckedBlock());
  EXPECT_EQ(run.result, "false");
  EXPECT_EQ(run.caller.resultCode, -1);
  EXPECT_THAT(run.records(method), failedBy("self.isConnected: 0"));
}

TEST(BeginBlockInEscPos, ChecksALostConnectionOnlyOnce) {
  Scenario scenario = escPosPrinter();
  scenario.script.saysConnected({true, true, false, true});
  const Outcome run = scenario.run(beginCheckedBlock());
  EXPECT_EQ(run.result, "false");
  EXPECT_THAT(run.records(method), failedBy("self.isConnected: 0"));
}

TEST(BeginBlockInEscPos, PassesOnTheExceptionOfTheStatusRequest) {
  Scenario scenario = Scenario::in(escPos);
  scenario.script.isLost(0.5);
  const Outcome run = scenario.run(beginCheckedBlock());
  EXPECT_EQ(run.result, "PortException: GetParsedStatus detected bluetooth disconnection");
  EXPECT_EQ(run.caller.resultCode, -1);
}

TEST(BeginBlockInEscPos, FailsWhenTheCounterCannotBeReset) {
  Scenario scenario = escPosPrinter();
  scenario.script.isLost();
  const Outcome run = scenario.run(beginCheckedBlock());
  EXPECT_EQ(run.result, "false");
  EXPECT_THAT(run.records(method),
              failedBy("Fail to [self writeWithRetry:etbResetCommand]: <self>, <address>"));
}

TEST(BeginBlockOfAnUnknownEmulation, SendsTheCommandsOfEscPos) {
  const Outcome run = Scenario::in(unknownEmulation).run(beginCheckedBlock());
  EXPECT_EQ(run.result, "true");
  EXPECT_EQ(run.caller.resultCode, 0);
  EXPECT_EQ(run.sent(), escPosCounterReset + dataCancel);
}

}  // namespace
}  // namespace quordalvane::test
