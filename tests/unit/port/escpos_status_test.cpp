#include <gtest/gtest.h>

#include <cstring>

#include "tests/unit/port/Steps.h"

namespace quordalvane::test {
namespace {

const std::string method = "getParsedStatus:level:";

TEST(EscPosStatusRequest, SendsThreeQueriesInAFixedOrderAndLogsEveryStep) {
  const Outcome run = escPosPrinter("12", "16", "72").run(getParsedStatus(9));
  EXPECT_EQ(run.result, "true");
  EXPECT_EQ(run.wire(), escPosStatusAsked("12", "16", "72"));
  EXPECT_EQ(run.records(method), text(R"(
    Start | <status>, 9
    Process | p_emulation: 2
    Process | Receive Status, Length: 1, Raw: <12>
    Process | Receive Status, Length: 1, Raw: <16>
    Process | Receive Status, Length: 1, Raw: <72>
    End | <status>, 9, -> 1
  )"));
}

TEST(EscPosStatusRequest, SetsTheFieldsOfItsThreeQueriesAndNoOtherField) {
  const Outcome run = escPosPrinter("1e", "16", "7e").run(getParsedStatus());
  QuorPrinterStatus_2 expected = Caller().status;
  expected.coverOpen = expected.offline = expected.compulsionSwitch = 1;
  expected.receiptPaperEmpty = expected.receiptPaperNearEmptyInner = 1;
  expected.rawLength = 1;
  expected.raw[0] = 0x7e;
  EXPECT_EQ(std::memcmp(&run.caller.status, &expected, sizeof expected), 0);
}

TEST(EscPosStatusRequest, ClearsThreeFieldsBeforeItWritesAQuery) {
  Scenario scenario = Scenario::in(escPos);
  scenario.script.writeReturns(1, -1);
  const Outcome run = scenario.run(getParsedStatus());
  EXPECT_EQ(run.result, "false");
  QuorPrinterStatus_2 expected = Caller().status;
  expected.coverOpen = expected.offline = expected.receiptPaperEmpty = 0;
  EXPECT_EQ(std::memcmp(&run.caller.status, &expected, sizeof expected), 0);
  EXPECT_EQ(run.records(method), text(R"(
    Start | <status>, 2
    Process | p_emulation: 2
    Error | Fail to [self writeWithRetry:command], <self>, <address>
    End | <status>, 2, -> 0
  )"));
}

TEST(EscPosStatusRequest, FailsIfAnyQueryCannotBeWritten) {
  for (const std::size_t write : {2U, 3U, 4U}) {
    Scenario scenario = escPosPrinter();
    scenario.script.writeReturns(write, -1);
    const Outcome run = scenario.run(getParsedStatus());
    EXPECT_EQ(run.result, "false");
    EXPECT_NE(run.records(method).find(
                  "Error | Fail to [self writeWithRetry:command], <self>, <address>\n"),
              std::string::npos);
  }
}

TEST(EscPosStatusRequest, FailsIfTheLinkIsLostBeforeTheFirstWrite) {
  Scenario scenario = escPosPrinter();
  scenario.script.isLost();
  EXPECT_EQ(scenario.run(getParsedStatus()).result, "false");
}

TEST(EscPosStatusRequest, ReadsOneByteForEachQueryAndLeavesLaterBytesForTheNextQuery) {
  Scenario scenario = Scenario::in(escPos);
  scenario.script.whenAsked(drawerQuery, whole(bytes("1a 16 32")));
  const Outcome run = scenario.run(getParsedStatus());
  EXPECT_EQ(run.result, "true");
  EXPECT_EQ(run.caller.status.offline, 1U);
  EXPECT_EQ(run.caller.status.coverOpen, 1U);
  EXPECT_EQ(run.caller.status.receiptPaperEmpty, 1U);
}

TEST(EscPosStatusRequest, FailsAndSendsNoMoreQueriesIfAnAnswerIsInvalid) {
  const struct {
    const char* answers[3];
    const char* error;
    std::size_t written;
  } rows[] = {{{"00", "12", "12"}, "CashDrawer), <status>, 0", 9},
              {{"12", "10", "12"}, "CoverOpen), <status>, 1", 12},
              {{"12", "12", "ff"}, "PaperEmpty), <status>, 2", 15}};
  for (const auto& row : rows) {
    const Outcome run =
        escPosPrinter(row.answers[0], row.answers[1], row.answers[2]).run(getParsedStatus());
    EXPECT_EQ(run.result, "false");
    EXPECT_EQ(run.sent().size(), row.written);
    EXPECT_EQ(run.caller.status.offline, 0U);
    EXPECT_NE(run.records(method).find(
                  std::string("Error | Fail to BuildParsedStatusESCPOS(quorPrinterStatus, ") +
                  row.error + "\nEnd | <status>, 2, -> 0\n"),
              std::string::npos)
        << run.records(method);
  }
}

TEST(EscPosStatusRequest, PollsForAnAnswerUntilTheTimeout) {
  const Outcome run = Scenario::in(escPos, 1000).run(getParsedStatus());
  EXPECT_EQ(run.result, "false");
  EXPECT_EQ(run.wire(), text(R"(
    slice for input 0.1
    output.write <1b 1d 03 04 00 00> -> 6
    output.write <10 04 01> -> 3
    6 x {
      slice for input 0.1
      usleep 200000
    }
    slice for input 0.1
  )"));
  EXPECT_EQ(run.records(method), text(R"(
    Start | <status>, 2
    Process | p_emulation: 2
    7 x {
      Process | receivedData: <address>
      Process | receivedData.length: 0
    }
    Error | end.tv_sec - start.tv_sec > TIMEOUT_SEC, 1000002, 1000000, 1
    End | <status>, 2, -> 0
  )"));
}

TEST(EscPosStatusRequest, HasOneTimeoutForAllThreeQueries) {
  Scenario scenario = Scenario::in(escPos, 1000);
  scenario.script.whenAsked(drawerQuery, {{bytes("12"), 0.9}})
      .whenAsked(coverQuery, {{bytes("12"), 0.9}});
  const Outcome run = scenario.run(getParsedStatus());
  EXPECT_EQ(run.result, "false");
  EXPECT_NE(run.records(method).find("> TIMEOUT_SEC, 1000002, 1000000, 1\n"), std::string::npos);
}

TEST(EscPosStatusRequest, ChecksItsTimeoutOnlyAfterAnEmptyRead) {
  Scenario scenario = escPosPrinter("12", "12", "12", 0);
  scenario.script.stepsClock(3, 100).stepsClock(4, 100);
  EXPECT_EQ(scenario.run(getParsedStatus()).result, "true");
}

TEST(EscPosStatusRequest, DoesNotTimeOutWhenTheClockIsSetBack) {
  Scenario scenario = Scenario::in(escPos, 0);
  scenario.script.stepsClock(4, -1)
      .whenAsked(drawerQuery, {{bytes("12"), 0.25}})
      .wheneverAsked(coverQuery, whole(bytes("12")))
      .wheneverAsked(paperQuery, whole(bytes("12")));
  EXPECT_EQ(scenario.run(getParsedStatus()).result, "true");
}

TEST(EscPosStatusRequest, LogsAFailedReadAndPollsAgain) {
  Scenario scenario = escPosPrinter();
  scenario.script.readReturns(1, -1);
  const Outcome run = scenario.run(getParsedStatus());
  EXPECT_EQ(run.result, "true");
  EXPECT_EQ(run.records(method), text(R"(
    Start | <status>, 2
    Process | p_emulation: 2
    Process | receivedData: 0x0
    3 x Process | Receive Status, Length: 1, Raw: <12>
    End | <status>, 2, -> 1
  )")) << "without a length, as there is no buffer";
}

TEST(EscPosStatusRequest, ThrowsIfTheLinkIsLostDuringAnyPoll) {
  for (const std::size_t answered : {0U, 1U, 2U}) {
    Scenario scenario = Scenario::in(escPos);
    const Bytes queries[] = {drawerQuery, coverQuery, paperQuery};
    for (std::size_t query = 0; query < answered; ++query) {
      scenario.script.whenAsked(queries[query], whole(bytes("12")));
    }
    scenario.script.isLost(0.5);
    const Outcome run = scenario.run(getParsedStatus());
    EXPECT_EQ(run.result, "PortException: GetParsedStatus detected bluetooth disconnection");
    EXPECT_TRUE(run.records(method).ends_with("Error | self.isConnected, 0\nEnd | <status>, 2\n"));
  }
}

TEST(EscPosStatusRequest, LogsALostConnectionWithTheResultOfASecondCheck) {
  Scenario scenario = Scenario::in(escPos);
  // One check for the read that discards old input, and two checks before each of the two writes.
  scenario.script.saysConnected({true, true, true, true, true, false, true});
  const Outcome run = scenario.run(getParsedStatus());
  EXPECT_EQ(run.result, "PortException: GetParsedStatus detected bluetooth disconnection");
  EXPECT_TRUE(run.records(method).ends_with("Error | self.isConnected, 1\nEnd | <status>, 2\n"));
}

TEST(EscPosStatusRequest, SendsTheNextQueryAsSoonAsTheLastAnswerIsParsed) {
  Scenario scenario = escPosPrinter();
  scenario.script.delivers(bytes("55"), 0.2);
  const Outcome run = scenario.run(getParsedStatus());
  EXPECT_EQ(run.result, "true");
  EXPECT_NE(run.all().find("gettimeofday 1000000.100000"), std::string::npos);
  EXPECT_EQ(run.all().find("gettimeofday 1000000.200000"), std::string::npos);
}

}  // namespace
}  // namespace quordalvane::test
