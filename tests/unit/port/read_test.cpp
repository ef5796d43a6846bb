#include <gtest/gtest.h>

#include "tests/unit/port/Printer.h"

namespace quordalvane::test {
namespace {

Scenario delivering(const Bytes& what) {
  Scenario scenario = Scenario::in(lineMode);
  scenario.script.delivers(what);
  return scenario;
}

TEST(PortRead, ReturnsTheBytesOfTheStreamAndLogsEveryStep) {
  const Outcome run = delivering(bytes("10 20")).run(read(128));
  EXPECT_EQ(run.result, "<10 20>");
  EXPECT_EQ(run.all(), text(R"(
    Start read: | 128
    Start isConnected |
    accessory.isConnected 1
    End isConnected | -> 1
    input.hasBytesAvailable 1
    input.hasBytesAvailable 1
    Start isConnected |
    accessory.isConnected 1
    End isConnected | -> 1
    input.read 128 -> <10 20>
    Read read: | EAAccessory, size: 2, command: <10 20>
    input.hasBytesAvailable 0
    End read: | 128, -> <10 20>
  )"));
}

TEST(PortRead, ReturnsAnEmptyBufferAfterATenthOfASecondIfNoByteArrives) {
  const Outcome run = Scenario::in(lineMode).run(read(5));
  EXPECT_EQ(run.result, "<>");
  EXPECT_EQ(run.all(), text(R"(
    Start read: | 5
    Start isConnected |
    accessory.isConnected 1
    End isConnected | -> 1
    input.hasBytesAvailable 0
    output.hasSpaceAvailable 1
    Process read: | _session.outputStream.hasSpaceAvailable == NO, 1
    slice for input 0.1
    input.hasBytesAvailable 0
    End read: | 5, -> <>
  )"));
}

TEST(PortRead, ChecksTheOutputsSpaceOnlyIfLoggingIsOn) {
  Scenario scenario = Scenario::in(lineMode);
  scenario.logging = false;
  const Outcome run = scenario.run(read(5));
  EXPECT_EQ(run.all(), text(R"(
    accessory.isConnected 1
    input.hasBytesAvailable 0
    slice for input 0.1
    input.hasBytesAvailable 0
  )"));
}

TEST(PortRead, LogsThatTheOutputHasNoSpace) {
  Scenario scenario = Scenario::in(lineMode);
  scenario.script.hasNoSpace();
  const Outcome run = scenario.run(read(5));
  EXPECT_NE(run.records("read:").find("outputStream.hasSpaceAvailable == NO, 0\n"),
            std::string::npos);
}

TEST(PortRead, ReturnsAnEmptyBufferIf0BytesAreRequested) {
  const Outcome run = delivering(bytes("10")).run(read(0));
  EXPECT_EQ(run.result, "<>");
  EXPECT_EQ(run.wire(), "");
  EXPECT_EQ(run.records("read:"), text(R"(
    Start | 0
    End | 0, -> <>
  )"));
}

TEST(PortRead, ReturnsNullIf0BytesAreRequestedOnALostLink) {
  Scenario scenario = Scenario::in(lineMode);
  scenario.script.isLost();
  EXPECT_EQ(scenario.run(read(0)).result, "none");
}

TEST(PortRead, ReadsAtMost128BytesFromTheStreamInOneCall) {
  const Bytes much(300, 0x41);
  const Outcome run = delivering(much).run(read(300));
  EXPECT_EQ(run.result, shown(much));
  EXPECT_EQ(run.wire(), "2 x input.read 128 -> " + shown(Bytes(128, 0x41)) + "\ninput.read 44 -> " +
                            shown(Bytes(44, 0x41)) + "\n");
}

TEST(PortRead, ReturnsNoMoreBytesThanRequested) {
  const Outcome run = delivering(bytes("01 02 03 04")).run(inTurn({read(3), read(3)}));
  EXPECT_EQ(run.result, "<01 02 03>; <04>");
}

TEST(PortRead, ReturnsAsSoonAsTheStreamHasNoMoreBytes) {
  Scenario scenario = delivering(bytes("01 02"));
  scenario.script.delivers(bytes("03"), 0.05);
  const Outcome run = scenario.run(read(3));
  EXPECT_EQ(run.result, "<01 02>");
  EXPECT_EQ(run.wire(), "input.read 3 -> <01 02>\n");
}

TEST(PortRead, WaitsATenthOfASecondEvenIfNoByteCanArrive) {
  Scenario scenario = Scenario::in(lineMode);
  scenario.script.expects = Script::Expects::Never;
  EXPECT_EQ(scenario.run(read(3)).wire(), "slice for input 0.1\n");
}

TEST(PortRead, ReturnsAtOnceWhenBytesArriveDuringItsWait) {
  Scenario scenario = Scenario::in(lineMode);
  scenario.script.delivers(bytes("01"), 0.05);
  const Outcome run = scenario.run(inTurn({read(3), writeWithRetry({})}));
  EXPECT_EQ(run.result, "<01>; 0");
  EXPECT_NE(run.all().find("gettimeofday 1000000.050000"), std::string::npos);
}

TEST(PortRead, ReturnsNullIfTheLinkIsLost) {
  Scenario scenario = delivering(bytes("01"));
  scenario.script.isLost();
  const Outcome run = scenario.run(read(9));
  EXPECT_EQ(run.result, "none");
  EXPECT_EQ(run.records("read:"), text(R"(
    Start | 9
    Error | self.isConnected, 0
    End | 9, -> 0x0
  )"));
}

TEST(PortRead, ReturnsNullIfTheLinkIsLostAfterTheFirstBytes) {
  Scenario scenario = delivering(bytes("01 02 03 04"));
  scenario.script.givesAtMost(2).isLostAfterReads(1);
  const Outcome run = scenario.run(read(4));
  EXPECT_EQ(run.result, "none");
  EXPECT_EQ(run.records("read:"), text(R"(
    Start | 4
    Read | EAAccessory, size: 2, command: <01 02>
    Error | self.isConnected, 0
    End | 4, -> 0x0
  )"));
}

TEST(PortRead, ReturnsNullIfTheStreamReturnsANegativeCount) {
  for (const std::int64_t count : {std::int64_t{-1}, std::int64_t{-2}, INT64_MIN}) {
    Scenario scenario = delivering(bytes("01"));
    scenario.script.readReturns(1, count);
    const Outcome run = scenario.run(read(200));
    EXPECT_EQ(run.result, "none") << count;
    EXPECT_EQ(run.records("read:"), text(R"(
      Start | 200
      Error | Fail to [_session.inputStream read:buf maxLength:recvSize], <address>, <address>, 128
      End | 200, -> 0x0
    )"));
  }
}

TEST(PortRead, ReadsAgainIfTheStreamReturnsTheCount0) {
  Scenario scenario = delivering(bytes("01"));
  scenario.script.readReturns(1, 0);
  const Outcome run = scenario.run(read(1));
  EXPECT_EQ(run.result, "<01>");
  EXPECT_NE(run.records("read:").find("Read | EAAccessory, size: 0, command: <>\n"),
            std::string::npos);
}

TEST(PortRead, ReadsNoByteBeyondItsBuffersIfTheStreamReturnsAWrongCount) {
  for (const std::int64_t count :
       {std::int64_t{2}, std::int64_t{129}, std::int64_t{1000000}, INT64_MAX}) {
    Scenario scenario = delivering(bytes("01"));
    scenario.script.readReturns(1, count).lostAfterCalls = 100;
    EXPECT_NE(scenario.runOnPort(read(1)).result, "") << count;
  }
}

TEST(PortRead, ReturnsNullIfThereIsNoAccessory) {
  Scenario scenario = Scenario::in(lineMode);
  scenario.isOpen = false;
  EXPECT_EQ(scenario.run(read(1)).result, "none");
}

TEST(PortRead, DoesNotWaitIfTheLinkIsLost) {
  Scenario scenario = Scenario::in(lineMode);
  scenario.script.isLost();
  EXPECT_EQ(scenario.run(read(1)).wire(), "");
}

}  // namespace
}  // namespace quordalvane::test
