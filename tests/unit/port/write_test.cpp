#include <gtest/gtest.h>

#include "tests/unit/port/Printer.h"

namespace quordalvane::test {
namespace {

Scenario open() {
  return Scenario::in(lineMode);
}

TEST(PortWrite, PassesTheWholeBufferToTheStreamAndLogsEveryStep) {
  const Outcome run = open().run(write(bytes("1b 06 01")));
  EXPECT_EQ(run.result, "3");
  EXPECT_EQ(run.all(), text(R"(
    Start write: | <1b 06 01>
    ignoreSigPipe
    output.hasSpaceAvailable 1
    output.hasSpaceAvailable 1
    Start isConnected |
    accessory.isConnected 1
    End isConnected | -> 1
    output.write <1b 06 01> -> 3
    Write write: | EAAccessory, size: 3, command: <1b 06 01>
    output.hasSpaceAvailable 1
    End write: | <1b 06 01>, -> 3
  )"));
}

TEST(PortWrite, Returns0AfterATenthOfASecondWithoutSpace) {
  Scenario scenario = open();
  scenario.script.hasNoSpace();
  const Outcome run = scenario.run(write(bytes("41")));
  EXPECT_EQ(run.result, "0");
  EXPECT_EQ(run.all(), text(R"(
    Start write: | <41>
    ignoreSigPipe
    output.hasSpaceAvailable 0
    Process write: | _session.outputStream.hasSpaceAvailable == NO, 0
    slice for output 0.10000000149011612
    output.hasSpaceAvailable 0
    End write: | <41>, -> 0
  )"));
}

TEST(PortWrite, WritesAsSoonAsThereIsSpace) {
  Scenario scenario = open();
  scenario.script.hasNoSpace(0.03);
  const Outcome run = scenario.run(inTurn({write(bytes("41")), getOnlineStatus()}));
  EXPECT_EQ(run.result.substr(0, 3), "1; ");
  EXPECT_NE(run.all().find("gettimeofday 1000000.030000"), std::string::npos);
}

TEST(PortWrite, Returns0ForAnEmptyBufferAfterItChecksForSpace) {
  const Outcome run = open().run(write({}));
  EXPECT_EQ(run.result, "0");
  EXPECT_EQ(run.all(), text(R"(
    Start write: | <>
    ignoreSigPipe
    output.hasSpaceAvailable 1
    output.hasSpaceAvailable 1
    End write: | <>, -> 0
  )"));
}

TEST(PortWrite, ReturnsThePartialCountIfTheStreamHasNoMoreSpace) {
  Scenario scenario = open();
  scenario.script.takesInAttempts({2});
  const Outcome run = scenario.run(write(bytes("41 42 43")));
  EXPECT_EQ(run.result, "2");
  EXPECT_EQ(run.records("write:"), text(R"(
    Start | <41 42 43>
    Write | EAAccessory, size: 2, command: <41 42>
    End | <41 42 43>, -> 2
  )"));
}

TEST(PortWrite, PassesTheRestToTheStreamAgainWhileThereIsSpace) {
  Scenario scenario = open();
  scenario.script.takesAtMost(2);
  const Outcome run = scenario.run(write(bytes("41 42 43 44 45")));
  EXPECT_EQ(run.result, "5");
  EXPECT_EQ(run.wire(), text(R"(
    output.write <41 42 43 44 45> -> 2
    output.write <43 44 45> -> 2
    output.write <45> -> 1
  )"));
}

TEST(PortWrite, ReturnsMinus1IfTheLinkIsLostEvenIfThereIsSpace) {
  Scenario scenario = open();
  scenario.script.isLost();
  const Outcome run = scenario.run(write(bytes("41")));
  EXPECT_EQ(run.result, "-1");
  EXPECT_EQ(run.sent(), Bytes{});
  EXPECT_EQ(run.records("write:"), text(R"(
    Start | <41>
    Error | self.isConnected, 0
    End | <data>, -> -1
  )"));
}

TEST(PortWrite, Returns0WithoutAConnectionCheckIfThereIsNoSpace) {
  Scenario scenario = open();
  scenario.script.isLost().hasNoSpace();
  const Outcome run = scenario.run(write(bytes("41")));
  EXPECT_EQ(run.result, "0");
  EXPECT_EQ(run.records("isConnected"), "");
}

TEST(PortWrite, Returns0ForAnEmptyBufferEvenIfTheLinkIsLost) {
  Scenario scenario = open();
  scenario.script.isLost();
  EXPECT_EQ(scenario.run(write({})).result, "0");
}

TEST(PortWrite, ChecksTheConnectionBeforeEachWriteToTheStream) {
  Scenario scenario = open();
  scenario.script.takesAtMost(2).isLostAfterBytes(4);
  const Outcome run = scenario.run(write(bytes("41 42 43 44 45")));
  EXPECT_EQ(run.result, "-1");
  EXPECT_EQ(run.sent(), bytes("41 42 43 44"));
}

TEST(PortWrite, ReturnsMinus1WhenTheStreamReportsAnError) {
  Scenario scenario = open();
  scenario.script.writeReturns(1, -1);
  const Outcome run = scenario.run(write(bytes("41 42")));
  EXPECT_EQ(run.result, "-1");
  EXPECT_EQ(run.records("write:"), text(R"(
    Start | <41 42>
    Error | Fail to [_session.outputStream write:writeBuffer maxLength:tempData.length], <address>, 0x0, 2
    End | <data>, -> -1
  )"));
}

TEST(PortWrite, LogsTheRemainingByteCountIfALaterWriteFails) {
  Scenario scenario = open();
  scenario.script.takesAtMost(2).writeReturns(2, -1);
  const Outcome run = scenario.run(write(bytes("41 42 43 44 45")));
  EXPECT_EQ(run.result, "-1");
  EXPECT_NE(run.records("write:").find("maxLength:tempData.length], <address>, 0x0, 3\n"),
            std::string::npos);
}

TEST(PortWrite, Returns0IfThereIsNoSession) {
  Scenario scenario = open();
  scenario.isOpen = false;
  const Outcome run = scenario.run(write(bytes("41")));
  EXPECT_EQ(run.result, "0");
  EXPECT_EQ(run.calls(), text(R"(
    ignoreSigPipe
    slice 0.10000000149011612
  )"));
}

TEST(PortWrite, SendsEveryByteValueUnchanged) {
  Bytes all(256);
  for (std::size_t value = 0; value < all.size(); ++value) {
    all[value] = static_cast<std::uint8_t>(value);
  }
  const Outcome run = open().run(write(all));
  EXPECT_EQ(run.result, "256");
  EXPECT_EQ(run.sent(), all);
}

TEST(PortWrite, ReadsNoByteBeyondItsBuffersIfTheStreamReturnsAWrongCount) {
  for (const std::int64_t count : {std::int64_t{-2}, std::int64_t{-100}, std::int64_t{4},
                                   std::int64_t{1000000}, INT64_MAX, INT64_MIN}) {
    Scenario scenario = open();
    scenario.script.writeReturns(1, count).lostAfterCalls = 100;
    const Outcome run = scenario.runOnPort(write(bytes("41 42 43")));
    EXPECT_NE(run.result, "") << count;
    EXPECT_EQ(run.records("write:").find("Fail to"), std::string::npos) << count;
  }
}

TEST(PortWrite, WritesAgainAfterAWriteThatSentNothing) {
  Scenario scenario = open();
  scenario.script.writeReturns(1, 0);
  const Outcome run = scenario.run(write(bytes("41")));
  EXPECT_EQ(run.result, "1");
  EXPECT_NE(run.records("write:").find("Write | EAAccessory, size: 0, command: <>\n"),
            std::string::npos);
}

}  // namespace
}  // namespace quordalvane::test
