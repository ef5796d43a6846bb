#include <gtest/gtest.h>

#include "tests/unit/port/Printer.h"

namespace quordalvane::test {
namespace {

const std::string method = "getOnlineStatus:";

TEST(OnlineStatus, IsTrueIfTheStatusIsOnLine) {
  Scenario scenario = lineModePrinter();
  const Outcome run = scenario.run(getOnlineStatus());
  EXPECT_EQ(run.result, "true");
  EXPECT_TRUE(run.caller.onlineStatus);
  EXPECT_EQ(run.wire(), text(R"(
    output.write <1b 06 01> -> 3
    slice for input 0.1
    output.write <1b 2a 72 42 1b 1d 03 04 00 00 1b 06 01> -> 13
    input.read 128 -> <89 01 00 00 00 00 00 00 05>
  )"));
  EXPECT_EQ(run.records(method), text(R"(
    Start | <online>
    Process | quorStatus.offline: 0
    End | <online>, -> 1
  )"));
  EXPECT_EQ(run.records("getParsedStatus:level:").substr(0, 21), "Start | <address>, 2\n");
}

TEST(OnlineStatus, IsFalseWithoutAnErrorIfTheStatusIsOffLine) {
  const Outcome run = lineModePrinter(lineStatus({offlineFlag})).run(getOnlineStatus());
  EXPECT_EQ(run.result, "true");
  EXPECT_FALSE(run.caller.onlineStatus);
  EXPECT_EQ(run.records(method), text(R"(
    Start | <online>
    Process | quorStatus.offline: 1
    End | <online>, -> 1
  )"));
}

TEST(OnlineStatus, IsReadFromTheDrawerQueryInEscPos) {
  const Outcome onLine = escPosPrinter("12").run(getOnlineStatus());
  EXPECT_EQ(onLine.result, "true");
  EXPECT_TRUE(onLine.caller.onlineStatus);
  const Outcome offLine = escPosPrinter("1a").run(getOnlineStatus());
  EXPECT_EQ(offLine.result, "true");
  EXPECT_FALSE(offLine.caller.onlineStatus);
}

TEST(OnlineStatus, IgnoresTheAnswerToItsFirstRequest) {
  Scenario scenario = lineModePrinter();
  scenario.script.whenAsked(shortRequest, whole(lineStatus({offlineFlag})));
  const Outcome run = scenario.run(getOnlineStatus());
  EXPECT_EQ(run.result, "true");
  EXPECT_TRUE(run.caller.onlineStatus);
}

TEST(OnlineStatus, IsUnchangedIfItsFirstRequestCannotBeWritten) {
  for (const bool before : {true, false}) {
    Scenario scenario = lineModePrinter();
    scenario.script.writeReturns(1, -1);
    const Outcome run =
        scenario.run(makeCall("getOnlineStatus", [before](auto& port, Caller& caller) {
          caller.onlineStatus = before;
          return port.getOnlineStatus(&caller.onlineStatus);
        }));
    EXPECT_EQ(run.result, "false");
    EXPECT_EQ(run.caller.onlineStatus, before);
    EXPECT_EQ(run.sent(), Bytes{});
    EXPECT_EQ(run.records("getParsedStatus:level:"), "");
    EXPECT_EQ(run.records(method), text(R"(
      Start | <online>
      Error | Fail to [self writeWithRetry:escAckSohCommand], <self>, <address>
      End | <online>, -> 0
    )"));
  }
}

TEST(OnlineStatus, IsFalseIfTheStatusFails) {
  const Outcome run = Scenario::in(lineMode).run(getOnlineStatus());
  EXPECT_EQ(run.result, "false");
  EXPECT_FALSE(run.caller.onlineStatus);
  EXPECT_EQ(run.records(method), text(R"(
    Start | <online>
    Error | Fail to [self getParsedStatus:&quorStatus level:2], <self>, <address>, 2
    End | <online>, -> 0
  )"));
}

TEST(OnlineStatus, IsUnchangedIfTheStatusThrows) {
  Scenario scenario = lineModePrinter();
  scenario.script.isLostAfterBytes(3);
  const Outcome run = scenario.run(getOnlineStatus());
  EXPECT_EQ(run.result, "PortException: Native WritePort failed");
  EXPECT_TRUE(run.caller.onlineStatus);
  EXPECT_EQ(run.records(method), "Start | <online>\n")
      << "an exception that passes through leaves no exit record";
}

TEST(OnlineStatus, IsFalseInAnUnknownEmulation) {
  const Outcome run = Scenario::in(unknownEmulation).run(getOnlineStatus());
  EXPECT_EQ(run.result, "false");
  EXPECT_FALSE(run.caller.onlineStatus);
}

}  // namespace
}  // namespace quordalvane::test
