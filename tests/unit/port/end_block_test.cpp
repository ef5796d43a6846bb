#include <gtest/gtest.h>

#include "tests/unit/port/Printer.h"

namespace quordalvane::test {
namespace {

const std::string method = "endCheckedBlock:level:";
const Bytes report = bytes("1b 1d 03 01 00 00 01 00");

TEST(EndBlockInLineMode, IsTrueWithoutASleepWhenTheCounterIs2AtOnce) {
  const Outcome run = lineModePrinter(lineStatus({}, 2)).run(endCheckedBlock(5));
  EXPECT_EQ(run.result, "true");
  EXPECT_EQ(run.wire(), text(R"(
    output.write <17 17> -> 2
    output.write <1b 1d 03 04 00 00> -> 6
    slice for input 0.1
    output.write <1b 2a 72 42 1b 1d 03 04 00 00 1b 06 01> -> 13
    input.read 128 -> <89 01 00 00 00 00 02 00 05>
  )"));
  EXPECT_EQ(run.records(method), text(R"(
    Start | <status>, 5
    Process | p_emulation: 1
    Process | quorPrinterStatus->etbCounter: 2
    End | <status>, 5, -> 1
  )"));
  EXPECT_EQ(run.records("getParsedStatus:level:").substr(0, 20), "Start | <status>, 5\n");
}

TEST(EndBlockInLineMode, WaitsForNoAnswerToItsMarks) {
  Scenario scenario = lineModePrinter(lineStatus({}, 2));
  scenario.script.expects = Script::Expects::WhereAsked;
  const Outcome run = scenario.run(inTurn({startDataCancel(), endCheckedBlock()}));
  EXPECT_EQ(run.result, "true; true");
  EXPECT_EQ(run.wire().find("slice"), std::string::npos) << run.wire();
}

TEST(EndBlockInLineMode, WaitsForLeftoversOfEarlierQuestions) {
  Scenario scenario = lineModePrinter(lineStatus({}, 2));
  scenario.script.expects = Script::Expects::WhereAsked;
  const Outcome run = scenario.run(inTurn({write(bytes("41")), endCheckedBlock()}));
  EXPECT_EQ(run.result, "1; true");
  EXPECT_NE(run.wire().find("slice for input 0.1"), std::string::npos) << run.wire();
}

TEST(EndBlockInLineMode, IsTrueWhenThePrinterIsOffLine) {
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

TEST(EndBlockInLineMode, IsNotSatisfiedByAnyOtherCounter) {
  for (const unsigned counter : {0U, 1U, 3U, 4U, 130U, 255U}) {
    Scenario scenario = lineModePrinter(lineStatus({}, counter));
    scenario.endMillis = 1000;
    const Outcome run = scenario.run(endCheckedBlock());
    EXPECT_EQ(run.result, "false") << counter;
    EXPECT_TRUE(run.records(method).ends_with(
        "Error | end.tv_sec - start.tv_sec > timeoutSec, 1000002, 1000000, 1\n"
        "End | <status>, 5, -> 0\n"));
  }
}

TEST(EndBlockInLineMode, HasATimeoutOfItsOwn) {
  Scenario scenario = lineModePrinter(lineStatus({}, 1), 60000);
  scenario.endMillis = 2000;
  EXPECT_NE(scenario.run(endCheckedBlock()).records(method).find("1000003, 1000000, 2\n"),
            std::string::npos);
}

TEST(EndBlockInLineMode, HasTheCreationTimeoutUntilAnotherIsSet) {
  const Outcome run = lineModePrinter(lineStatus({}, 1), 1000).run(endCheckedBlock());
  EXPECT_NE(run.records(method).find("1000002, 1000000, 1\n"), std::string::npos);
}

TEST(EndBlockInLineMode, TimesTheWaitFromBeforeTheEtb) {
  Scenario scenario = lineModePrinter(lineStatus({}, 1));
  scenario.endMillis = 1000;
  scenario.script.takesInAttempts(std::vector<std::size_t>(10, 0));  // 1.5 s for the ETB
  const Outcome run = scenario.run(endCheckedBlock());
  EXPECT_NE(run.records(method).find("1000002, 1000000, 1\n"), std::string::npos)
      << run.records(method);
}

TEST(EndBlockInLineMode, HasALimitOf0SecondsBelow1000Milliseconds) {
  Scenario scenario = lineModePrinter(lineStatus({}, 1));
  scenario.endMillis = 999;
  scenario.script.startsPastTheSecond(850000);
  const Outcome run = scenario.run(endCheckedBlock());
  EXPECT_NE(run.records(method).find("1000001, 1000000, 0\n"), std::string::npos);
}

TEST(EndBlockInLineMode, PollsOnAfterAStatusThatFailed) {
  Scenario scenario = Scenario::in(lineMode);
  scenario.script.whenAsked(lineRequest, {})
      .whenAsked(lineRequest, {})
      .whenAsked(lineRequest, whole(lineStatus({}, 2)));
  const Outcome run = scenario.run(endCheckedBlock());
  EXPECT_EQ(run.result, "true");
  EXPECT_NE(run.wire().find("usleep 100000\n"), std::string::npos);
  EXPECT_EQ(run.wire().find("select"), std::string::npos);
}

TEST(EndBlockInLineMode, FailsWhenTheStatusKeepsFailing) {
  Scenario scenario = Scenario::in(lineMode);
  scenario.endMillis = 2000;
  const Outcome run = scenario.run(endCheckedBlock());
  EXPECT_EQ(run.result, "false");
  EXPECT_TRUE(run.records(method).ends_with(
      "Error | end.tv_sec - start.tv_sec > timeoutSec, 1000003, 1000000, 2\n"
      "End | <status>, 5, -> 0\n"))
      << run.records(method);
}

TEST(EndBlockInLineMode, LetsAnExceptionOfTheStatusPass) {
  Scenario scenario = lineModePrinter();
  scenario.script.isLostAfterBytes(8);
  const Outcome run = scenario.run(endCheckedBlock());
  EXPECT_EQ(run.result, "PortException: Native WritePort failed");
  EXPECT_EQ(run.records(method), "Start | <status>, 5\nProcess | p_emulation: 1\n");
}

TEST(EndBlockInLineMode, IsNotTimedOutByAClockThatStepsBack) {
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
  EXPECT_TRUE(run.records(method).ends_with(
      "Error | Fail to [self writeWithRetry:etbCommand]: <self>, <address>\n"
      "End | <status>, 5, -> 0\n"));
}

TEST_P(EndBlock, FailsWhenTheDataCancelEndCannotBeSent) {
  Scenario scenario = Scenario::in(GetParam());
  scenario.script.writeReturns(2, -1);
  const Outcome run = scenario.run(endCheckedBlock());
  EXPECT_EQ(run.result, "false");
  EXPECT_TRUE(run.records(method).ends_with(
      "Error | Fail to [self writeWithRetry:dataCancelEndCommand]: <self>, <address>\n"
      "End | <status>, 5, -> 0\n"));
}

INSTANTIATE_TEST_SUITE_P(Emulation, EndBlock, testing::Values(unknownEmulation, lineMode, escPos));

/// The printer sends its report after the ETB; its immediate answer to 10 04 01 follows.
Scenario reporting(const char* firstAnswer) {
  Scenario scenario = Scenario::in(escPos);
  scenario.script.whenAsked(escPosEtb, whole(report))
      .whenAsked(drawerQuery, whole(bytes(firstAnswer)))
      .wheneverAsked(drawerQuery, whole(bytes("12")))
      .wheneverAsked(coverQuery, whole(bytes("12")))
      .wheneverAsked(paperQuery, whole(bytes("12")));
  return scenario;
}

TEST(EndBlockInEscPos, EndsWithTheReportAndLogsEveryStep) {
  const Outcome run = reporting("12").run(endCheckedBlock(5));
  EXPECT_EQ(run.result, "true");
  EXPECT_EQ(run.wire(), text(R"(
    output.write <1b 1d 03 01 00 00> -> 6
    2 x output.write <1b 1d 03 04 00 00> -> 6
    output.write <10 04 01> -> 3
    input.read 1 -> <1b>
    input.read 7 -> <1d 03 01 00 00 01 00>
    input.read 1 -> <12>
    2 x slice for input 0.1
    output.write <1b 1d 03 04 00 00> -> 6
    output.write <10 04 01> -> 3
    input.read 1 -> <12>
    output.write <10 04 02> -> 3
    input.read 1 -> <12>
    output.write <10 04 04> -> 3
    input.read 1 -> <12>
  )"));
  EXPECT_EQ(run.records(method), text(R"(
    Start | <status>, 5
    Process | p_emulation: 2
    Process | topByte: 27
    Process | etbCountUp: 1
    Process | (topByte & 0x93): 18
    Process | (topByte & 0x08): 0
    Process | data: <address>
    Process | data.length: 0
    End | <status>, 5, -> 1
  )"));
}

TEST(EndBlockInEscPos, WaitsForTheReportOverSeveralPasses) {
  Scenario scenario = escPosPrinter();
  scenario.script.whenAsked(escPosEtb, {{report, 0.5}});
  const Outcome run = scenario.run(endCheckedBlock());
  EXPECT_EQ(run.result, "true");
  EXPECT_NE(run.records(method).find("etbCountUp: 1\n"), std::string::npos);
}

TEST(EndBlockInEscPos, IsFalseWhenNoReportArrives) {
  Scenario scenario = escPosPrinter();
  scenario.endMillis = 1000;
  const Outcome run = scenario.run(endCheckedBlock());
  EXPECT_EQ(run.result, "false");
  EXPECT_EQ(run.wire(), text(R"(
    output.write <1b 1d 03 01 00 00> -> 6
    2 x output.write <1b 1d 03 04 00 00> -> 6
    10 x {
      output.write <10 04 01> -> 3
      input.read 1 -> <12>
      usleep 200000
      output.write <1b 1d 03 04 00 00> -> 6
    }
    output.write <10 04 01> -> 3
    input.read 1 -> <12>
  )")) << "the first of each pass follows the one after the ETB";
  EXPECT_TRUE(run.records(method).ends_with(
      "Error | end.tv_sec - start.tv_sec > timeoutSec, 1000002, 1000000, 1\n"
      "End | <status>, 5, -> 0\n"));
}

TEST(EndBlockInEscPos, EndsAlsoOnTheOffLineBitWithoutAReport) {
  const Outcome run = escPosPrinter("1a").run(endCheckedBlock());
  EXPECT_EQ(run.result, "true");
  EXPECT_EQ(run.caller.status.offline, 1U);
  EXPECT_EQ(run.records(method).find("etbCountUp"), std::string::npos);
  EXPECT_NE(run.records(method).find("Process | (topByte & 0x08): 8\n"), std::string::npos);
}

TEST(EndBlockInEscPos, BeginsTheNextPassAtOnceAfterAnInvalidStatus) {
  Scenario scenario = escPosPrinter();
  scenario.script.whenAsked(drawerQuery, whole(bytes("00")))
      .whenAsked(drawerQuery, whole(bytes("1a")));
  const Outcome run = scenario.run(endCheckedBlock());
  EXPECT_EQ(run.result, "true");
  EXPECT_EQ(run.wire().substr(0, run.wire().find("2 x slice")), text(R"(
    output.write <1b 1d 03 01 00 00> -> 6
    2 x output.write <1b 1d 03 04 00 00> -> 6
    output.write <10 04 01> -> 3
    input.read 1 -> <00>
    output.write <1b 1d 03 04 00 00> -> 6
    output.write <10 04 01> -> 3
    input.read 1 -> <1a>
  )"));
}

TEST(EndBlockInEscPos, EndsALoopOfInvalidStatusesWithinOnePassOfALostLink) {
  Scenario scenario = escPosPrinter("00");
  scenario.script.isLostAfterBytes(100000);
  const Outcome run = scenario.run(endCheckedBlock());
  EXPECT_EQ(run.result, "false");
  EXPECT_LE(run.sent().size(), 100000U + 9U);
}

TEST(EndBlockInEscPos, IgnoresAReportWhoseCountIs0) {
  Scenario scenario = escPosPrinter();
  scenario.endMillis = 1000;
  scenario.script.whenAsked(escPosEtb, whole(bytes("1b 1d 03 01 00 00 00 00")));
  const Outcome run = scenario.run(endCheckedBlock());
  EXPECT_EQ(run.result, "false");
  EXPECT_EQ(run.records(method).find("etbCountUp"), std::string::npos);
}

TEST(EndBlockInEscPos, DoesNotForgetAReportBecauseOfALaterOneWithCount0) {
  Scenario scenario = escPosPrinter();
  scenario.script.whenAsked(escPosEtb, whole(report))
      .whenAsked(drawerQuery, whole(bytes("00 1b 1d 03 01 00 00 00 00")));
  EXPECT_EQ(scenario.run(endCheckedBlock()).result, "true");
}

TEST(EndBlockInEscPos, TakesOnlyOneReportInAPass) {
  Scenario scenario = escPosPrinter();
  scenario.endMillis = 1000;
  const Bytes zero = bytes("1b 1d 03 01 00 00 00 00");
  scenario.script.whenAsked(escPosEtb, whole(zero + bytes("1b")));
  const Outcome run = scenario.run(endCheckedBlock());
  EXPECT_NE(run.records(method).find(text(R"(
    Process | topByte: 27
    Process | (topByte & 0x93): 19
    Process | (topByte & 0x08): 8
  )")),
            std::string::npos)
      << "the second 1b is in the place of the status";
}

TEST(EndBlockInEscPos, FailsWhenNothingReadableFollowsThe1b) {
  Scenario scenario = Scenario::in(escPos);
  scenario.script.whenAsked(escPosEtb, whole(bytes("1b"))).isLostAfterReads(1);
  const Outcome run = scenario.run(endCheckedBlock());
  EXPECT_EQ(run.result, "false");
  EXPECT_TRUE(
      run.records(method).ends_with("Error | Fail to [[self read:restDataSize] retain]: <self>, 7\n"
                                    "End | <status>, 5, -> 0\n"));
}

TEST(EndBlockInEscPos, TakesAReportThatIsCutOffForOneWithoutACount) {
  for (std::size_t length = 1; length < report.size(); ++length) {
    Scenario scenario = escPosPrinter();
    scenario.endMillis = 1000;
    Bytes start(report.begin(), report.begin() + static_cast<std::ptrdiff_t>(length));
    scenario.script.whenAsked(escPosEtb, {{start}}).whenAsked(drawerQuery, {{bytes("12"), 0.15}});
    const Outcome run = scenario.run(endCheckedBlock());
    EXPECT_EQ(run.result, length > 6 ? "true" : "false") << length;
  }
}

TEST(EndBlockInEscPos, TakesTheRestOfAReportForTheStatus) {
  Scenario scenario = escPosPrinter();
  scenario.script.whenAsked(escPosEtb, {{bytes("1b 1d 03")}, {bytes("1a"), 0.15}});
  const Outcome run = scenario.run(endCheckedBlock());
  EXPECT_EQ(run.result, "true");
  EXPECT_NE(run.records(method).find("topByte & 0x08): 8"), std::string::npos);
}

TEST(EndBlockInEscPos, PollsForTheStatusByteUntilTheTimeout) {
  Scenario scenario = Scenario::in(escPos);
  scenario.endMillis = 1000;
  const Outcome run = scenario.run(endCheckedBlock());
  EXPECT_EQ(run.result, "false");
  EXPECT_EQ(run.records(method), text(R"(
    Start | <status>, 5
    Process | p_emulation: 2
    8 x {
      Process | data: <address>
      Process | data.length: 0
    }
    Error | end.tv_sec - start.tv_sec > timeoutSec, 1000002, 1000000, 1
    End | <status>, 5, -> 0
  )"));
  EXPECT_EQ(run.sent(), escPosEtb + dataCancelEnd + dataCancelEnd + drawerQuery)
      << "the request is not repeated inside the poll";
}

TEST(EndBlockInEscPos, PollsAfterAReportUntilTheTimeout) {
  Scenario scenario = Scenario::in(escPos);
  scenario.endMillis = 1000;
  scenario.script.whenAsked(escPosEtb, whole(report));
  const Outcome run = scenario.run(endCheckedBlock());
  EXPECT_EQ(run.result, "false");
  EXPECT_NE(run.records(method).find("etbCountUp: 1\n"), std::string::npos);
}

TEST(EndBlockInEscPos, WaitsToTheTimeoutWhenTheLinkIsLostDuringThePoll) {
  Scenario scenario = Scenario::in(escPos);
  scenario.endMillis = 2000;
  scenario.script.isLost(0.5);
  const Outcome run = scenario.run(endCheckedBlock());
  EXPECT_EQ(run.result, "false");
  EXPECT_NE(run.records(method).find("Process | data: 0x0\n"), std::string::npos);
  EXPECT_NE(run.records(method).find("1000003, 1000000, 2\n"), std::string::npos);
}

TEST(EndBlockInEscPos, FailsWhenTheStatusRequestCannotBeSent) {
  Scenario scenario = escPosPrinter();
  scenario.script.writeReturns(4, -1);
  const Outcome run = scenario.run(endCheckedBlock());
  EXPECT_EQ(run.result, "false");
  EXPECT_TRUE(run.records(method).ends_with(
      "Error | Fail to [self writeWithRetry:statusRequestData]: <self>, <address>\n"
      "End | <status>, 5, -> 0\n"));
}

TEST(EndBlockInEscPos, FailsWhenTheDataCancelEndOfAPassCannotBeSent) {
  Scenario scenario = escPosPrinter();
  scenario.script.writeReturns(3, -1);
  const Outcome run = scenario.run(endCheckedBlock());
  EXPECT_EQ(run.result, "false");
  EXPECT_TRUE(run.records(method).ends_with(
      "Error | Fail to [self writeWithRetry:dataCancelEndCommand]: <self>, <address>\n"
      "End | <status>, 5, -> 0\n"));
}

TEST(EndBlockInEscPos, DrainsTheInputBeforeTheFinalStatus) {
  Scenario scenario = reporting("12 aa bb");
  const Outcome run = scenario.run(endCheckedBlock());
  EXPECT_EQ(run.result, "true");
  EXPECT_NE(run.wire().find("input.read 1 -> <aa>\ninput.read 1 -> <bb>\n"), std::string::npos);
}

TEST(EndBlockInEscPos, EndsTheDrainWithinOneReadOfALostLink) {
  Scenario scenario = reporting("12");
  scenario.script.whenAsked(escPosEtb, {});
  scenario.script.deliveries = {{Bytes(50000, 0xaa), 0.15}};
  scenario.script.isLostAfterReads(1000);
  const Outcome run = scenario.run(endCheckedBlock());
  EXPECT_EQ(run.result, "false");
}

TEST(EndBlockInEscPos, FailsWithoutAFinalStatus) {
  Scenario scenario = escPosPrinter();
  scenario.script.whenAsked(drawerQuery, whole(bytes("1a")))
      .whenAsked(drawerQuery, whole(bytes("00")));
  const Outcome run = scenario.run(endCheckedBlock());
  EXPECT_EQ(run.result, "false");
  EXPECT_TRUE(run.records(method).ends_with(
      "Error | Fail to [self getParsedStatus:quorPrinterStatus level:level]: <self>, <status>, 5\n"
      "End | <status>, 5, -> 0\n"));
}

TEST(EndBlockInEscPos, MayEndOffLineAndThenFindThePrinterOnLine) {
  Scenario scenario = escPosPrinter();
  scenario.script.whenAsked(drawerQuery, whole(bytes("1a")));
  const Outcome run = scenario.run(endCheckedBlock());
  EXPECT_EQ(run.result, "true");
  EXPECT_EQ(run.caller.status.offline, 0U);
}

TEST(EndBlockOfAnUnknownEmulation, FollowsEscPosAndCannotSucceed) {
  Scenario scenario = reporting("12");
  scenario.creation.emulation = unknownEmulation;
  const Outcome run = scenario.run(endCheckedBlock());
  EXPECT_EQ(run.result, "false");
  EXPECT_EQ(run.sent(), escPosEtb + dataCancelEnd + dataCancelEnd + drawerQuery);
  EXPECT_NE(run.records(method).find("etbCountUp: 1\n"), std::string::npos);
}

}  // namespace
}  // namespace quordalvane::test
