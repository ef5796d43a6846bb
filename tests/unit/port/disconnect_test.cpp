#include <gtest/gtest.h>

#include "tests/unit/port/Printer.h"

namespace quordalvane::test {
namespace {

const Bytes addressQuery = ascii("AT*AILBA?\r");
const Bytes dropCommand = ascii("AT*AMWS=10,0,0,0,1,0\r");
const std::string method = "disconnectBluetoothConnection";

TEST(Disconnect, SwitchesTheModuleToAtCommandsAndDropsTheLink) {
  Scenario scenario = Scenario::in(lineMode);
  scenario.script.whenAsked(addressQuery, whole(ascii("\r\n*AILBA:0011223344FF\r\n\r\nOK\r\n")))
      .isLost(3.0);
  const Outcome run = scenario.run(inTurn({disconnect(), isConnected()}));
  EXPECT_EQ(run.result, "true; false");
  EXPECT_EQ(run.records("disconnect"), "Start |\nEnd | -> 1\n");
  EXPECT_EQ(run.sent(), bytes("2f 2f 2f") + addressQuery + dropCommand);
  EXPECT_EQ(run.calls().find("close"), std::string::npos) << "the port remains open";
}

TEST(Disconnect, SendsNoDropCommandIfTheAtCommandModeCannotBeEntered) {
  Scenario scenario = Scenario::in(lineMode);
  const Outcome run = scenario.run(disconnect());
  EXPECT_EQ(run.result, "false");
  EXPECT_EQ(run.sent(), bytes("2f 2f 2f") + addressQuery);
  EXPECT_EQ(run.records("disconnect"), text(R"(
    Start |
    Error | Fail to [self enterATMode], <self>
    End | -> 0
  )"));
}

TEST(Disconnect, FailsWhenTheLinkIsNotDropped) {
  Scenario scenario = Scenario::in(lineMode, 1000);
  scenario.script.whenAsked(addressQuery, whole(ascii("\r\n*AILBA:0011223344FF\r\n\r\nOK\r\n")));
  const Outcome run = scenario.run(disconnect());
  EXPECT_EQ(run.result, "false");
  EXPECT_EQ(run.records("disconnect"), text(R"(
    Start |
    Error | Fail to [self disconnectBluetoothConnection], <self>
    End | -> 0
  )"));
}

TEST(Disconnect, PassesOnTheRangeErrorOfAModuleReply) {
  Scenario scenario = Scenario::in(lineMode);
  scenario.script.whenAsked(addressQuery, whole(ascii("\r\nOK\r\n")));
  const Outcome run = scenario.run(disconnect());
  EXPECT_EQ(run.result, "std::out_of_range");
  EXPECT_EQ(run.records("disconnect"), "Start |\n");
}

TEST(DropOfTheLink, SucceedsAfterOneRunLoopSliceIfTheLinkIsLostAtOnce) {
  Scenario scenario = Scenario::in(lineMode);
  scenario.script.isLost(0.05);
  const Outcome run = scenario.run(disconnectBluetoothConnection());
  EXPECT_EQ(run.result, "true");
  EXPECT_EQ(run.wire(), "output.write " + shown(dropCommand) + " -> 21\nslice 0.1\n");
  EXPECT_EQ(run.records(method), text(R"(
    Start |
    Process | self.isConnected: 0
    End | -> 1
  )"));
}

TEST(DropOfTheLink, ChecksTheConnectionASecondTimeForTheLog) {
  Scenario scenario = Scenario::in(lineMode);
  scenario.script.saysConnected({true, true, false, true});
  const Outcome run = scenario.run(disconnectBluetoothConnection());
  EXPECT_EQ(run.result, "true");
  EXPECT_EQ(run.records(method), text(R"(
    Start |
    Process | self.isConnected: 1
    End | -> 1
  )"));
}

TEST(DropOfTheLink, ChecksTheLinkEvery300MillisecondsUntilTheTimeout) {
  const Outcome run = Scenario::in(lineMode, 1000).run(disconnectBluetoothConnection());
  EXPECT_EQ(run.result, "false");
  EXPECT_EQ(run.wire(), "output.write " + shown(dropCommand) +
                            " -> 21\n7 x {\n  slice 0.1\n  usleep 200000\n}\nslice 0.1\n");
  EXPECT_EQ(run.records(method), text(R"(
    Start |
    Error | end.tv_sec - start.tv_sec > timeout_ / 1000, 1000002, 1000000, 1
    End | -> 0
  )"));
}

TEST(DropOfTheLink, FailsWhenTheElapsedWholeSecondsExceedTheTimeout) {
  const Outcome run = Scenario::in(lineMode, 10000).run(disconnectBluetoothConnection());
  EXPECT_NE(run.records(method).find("1000011, 1000000, 10"), std::string::npos);
}

TEST(DropOfTheLink, DoesNotReadTheModulesReply) {
  Scenario scenario = Scenario::in(lineMode, 1000);
  scenario.script.whenAsked(dropCommand, whole(ascii("\r\nERROR\r\n")));
  const Outcome run = scenario.run(disconnectBluetoothConnection());
  EXPECT_EQ(run.result, "false");
  EXPECT_EQ(run.records("read:"), "");
}

TEST(DropOfTheLink, FailsWhenTheCommandCannotBeWritten) {
  Scenario scenario = Scenario::in(lineMode);
  scenario.script.isLost();
  const Outcome run = scenario.run(disconnectBluetoothConnection());
  EXPECT_EQ(run.result, "false");
  EXPECT_EQ(run.records(method), text(R"(
    Start |
    Error | Fail to [self writeWithRetry:disconnectData]: <self>, <address>
    End | -> 0
  )"));
}

}  // namespace
}  // namespace quordalvane::test
