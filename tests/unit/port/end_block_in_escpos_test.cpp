#include <gtest/gtest.h>

#include "tests/unit/port/Steps.h"

namespace quordalvane::test {
namespace {

const std::string method = "endCheckedBlock:level:";
const Bytes report = bytes("1b 1d 03 01 00 00 01 00");

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

TEST(EndBlockInEscPos, SucceedsWithTheReportOfThePrinterAndLogsEveryStep) {
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

TEST(EndBlockInEscPos, WaitsForTheReportOfThePrinter) {
  Scenario scenario = escPosPrinter();
  scenario.script.whenAsked(escPosEtb, {{report, 0.5}});
  const Outcome run = scenario.run(endCheckedBlock());
  EXPECT_EQ(run.result, "true");
  EXPECT_NE(run.records(method).find("etbCountUp: 1\n"), std::string::npos);
}

TEST(EndBlockInEscPos, FailsAtTheTimeoutIfNoReportArrives) {
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
  EXPECT_THAT(run.records(method), timedOut("timeoutSec", 1, 2));
}

TEST(EndBlockInEscPos, SucceedsWithoutAReportIfThePrinterIsOffLine) {
  const Outcome run = escPosPrinter("1a").run(endCheckedBlock());
  EXPECT_EQ(run.result, "true");
  EXPECT_EQ(run.caller.status.offline, 1U);
  EXPECT_EQ(run.records(method).find("etbCountUp"), std::string::npos);
  EXPECT_NE(run.records(method).find("Process | (topByte & 0x08): 8\n"), std::string::npos);
}

TEST(EndBlockInEscPos, AsksAgainAtOnceAfterAnInvalidStatus) {
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

TEST(EndBlockInEscPos, StopsAskingForAValidStatusWhenTheLinkIsLost) {
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

TEST(EndBlockInEscPos, SucceedsEvenIfASecondReportHasTheCount0) {
  Scenario scenario = escPosPrinter();
  scenario.script.whenAsked(escPosEtb, whole(report))
      .whenAsked(drawerQuery, whole(bytes("00 1b 1d 03 01 00 00 00 00")));
  EXPECT_EQ(scenario.run(endCheckedBlock()).result, "true");
}

TEST(EndBlockInEscPos, ReadsTheStartOfASecondReportAsTheStatusByte) {
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

TEST(EndBlockInEscPos, FailsIfTheReadAfterTheFirstByteOfAReportFails) {
  Scenario scenario = Scenario::in(escPos);
  scenario.script.whenAsked(escPosEtb, whole(bytes("1b"))).isLostAfterReads(1);
  const Outcome run = scenario.run(endCheckedBlock());
  EXPECT_EQ(run.result, "false");
  EXPECT_THAT(run.records(method),
              failedBy("Fail to [[self read:restDataSize] retain]: <self>, 7"));
}

TEST(EndBlockInEscPos, TreatsAReportWithoutACountAsMissing) {
  for (std::size_t length = 1; length < report.size(); ++length) {
    Scenario scenario = escPosPrinter();
    scenario.endMillis = 1000;
    Bytes start(report.begin(), report.begin() + static_cast<std::ptrdiff_t>(length));
    scenario.script.whenAsked(escPosEtb, {{start}}).whenAsked(drawerQuery, {{bytes("12"), 0.15}});
    const Outcome run = scenario.run(endCheckedBlock());
    EXPECT_EQ(run.result, length > 6 ? "true" : "false") << length;
  }
}

TEST(EndBlockInEscPos, ReadsALateByteAsTheStatusAfterAnIncompleteReport) {
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

TEST(EndBlockInEscPos, PollsForTheStatusAfterAReportUntilTheTimeout) {
  Scenario scenario = Scenario::in(escPos);
  scenario.endMillis = 1000;
  scenario.script.whenAsked(escPosEtb, whole(report));
  const Outcome run = scenario.run(endCheckedBlock());
  EXPECT_EQ(run.result, "false");
  EXPECT_NE(run.records(method).find("etbCountUp: 1\n"), std::string::npos);
}

TEST(EndBlockInEscPos, WaitsUntilTheTimeoutEvenIfTheLinkIsLostDuringThePoll) {
  Scenario scenario = Scenario::in(escPos);
  scenario.endMillis = 2000;
  scenario.script.isLost(0.5);
  const Outcome run = scenario.run(endCheckedBlock());
  EXPECT_EQ(run.result, "false");
  EXPECT_NE(run.records(method).find("Process | data: 0x0\n"), std::string::npos);
  EXPECT_THAT(run.records(method), timedOut("timeoutSec", 2, 3));
}

TEST(EndBlockInEscPos, FailsWhenTheStatusRequestCannotBeSent) {
  Scenario scenario = escPosPrinter();
  scenario.script.writeReturns(4, -1);
  const Outcome run = scenario.run(endCheckedBlock());
  EXPECT_EQ(run.result, "false");
  EXPECT_THAT(run.records(method),
              failedBy("Fail to [self writeWithRetry:statusRequestData]: <self>, <address>"));
}

TEST(EndBlockInEscPos, FailsIfTheSecondCommandToEndDataCancelCannotBeSent) {
  Scenario scenario = escPosPrinter();
  scenario.script.writeReturns(3, -1);
  const Outcome run = scenario.run(endCheckedBlock());
  EXPECT_EQ(run.result, "false");
  EXPECT_THAT(run.records(method),
              failedBy("Fail to [self writeWithRetry:dataCancelEndCommand]: <self>, <address>"));
}

TEST(EndBlockInEscPos, DrainsTheInputBeforeTheFinalStatus) {
  Scenario scenario = reporting("12 aa bb");
  const Outcome run = scenario.run(endCheckedBlock());
  EXPECT_EQ(run.result, "true");
  EXPECT_NE(run.wire().find("input.read 1 -> <aa>\ninput.read 1 -> <bb>\n"), std::string::npos);
}

TEST(EndBlockInEscPos, StopsDrainingTheInputWhenTheLinkIsLost) {
  Scenario scenario = reporting("12");
  scenario.script.whenAsked(escPosEtb, {});
  scenario.script.deliveries = {{Bytes(50000, 0xaa), 0.15}};
  scenario.script.isLostAfterReads(1000);
  const Outcome run = scenario.run(endCheckedBlock());
  EXPECT_EQ(run.result, "false");
}

TEST(EndBlockInEscPos, FailsIfTheFinalStatusIsInvalid) {
  Scenario scenario = escPosPrinter();
  scenario.script.whenAsked(drawerQuery, whole(bytes("1a")))
      .whenAsked(drawerQuery, whole(bytes("00")));
  const Outcome run = scenario.run(endCheckedBlock());
  EXPECT_EQ(run.result, "false");
  EXPECT_THAT(
      run.records(method),
      failedBy(
          "Fail to [self getParsedStatus:quorPrinterStatus level:level]: <self>, <status>, 5"));
}

TEST(EndBlockInEscPos, SucceedsWithoutAReportIfThePrinterWasOffLineOnlyAtFirst) {
  Scenario scenario = escPosPrinter();
  scenario.script.whenAsked(drawerQuery, whole(bytes("1a")));
  const Outcome run = scenario.run(endCheckedBlock());
  EXPECT_EQ(run.result, "true");
  EXPECT_EQ(run.caller.status.offline, 0U);
}

TEST(EndBlockOfAnUnknownEmulation, SendsTheCommandsOfEscPosAndFails) {
  Scenario scenario = reporting("12");
  scenario.creation.emulation = unknownEmulation;
  const Outcome run = scenario.run(endCheckedBlock());
  EXPECT_EQ(run.result, "false");
  EXPECT_EQ(run.sent(), escPosEtb + dataCancelEnd + dataCancelEnd + drawerQuery);
  EXPECT_NE(run.records(method).find("etbCountUp: 1\n"), std::string::npos);
}

}  // namespace
}  // namespace quordalvane::test
