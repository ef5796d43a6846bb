#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>

#include "tests/unit/port/Steps.h"

namespace quordalvane::test {
namespace {

const std::string method = "getParsedStatus:level:";

TEST(LineStatusRequest, SendsOneCommandAndLogsEveryStep) {
  const Outcome run = lineModePrinter(lineStatus({}, 3)).run(getParsedStatus(9));
  EXPECT_EQ(run.result, "true");
  EXPECT_EQ(run.caller.status.etbCounter, 3);
  EXPECT_EQ(run.caller.status.rawLength, 9U);
  EXPECT_EQ(run.wire(), lineStatusAsked(lineStatus({}, 3)));
  EXPECT_EQ(run.records(method), text(R"(
    Start | <status>, 9
    Process | p_emulation: 1
    Process | Receive Status, Length: 9, Raw: <89 01 00 00 00 00 03 00 05>
    End | <status>, 9, -> 1
  )"));
}

TEST(LineStatusRequest, DiscardsPendingBytesFirst) {
  Scenario scenario = lineModePrinter();
  scenario.script.delivers(Bytes(300, 0x41));
  const Outcome run = scenario.run(getParsedStatus());
  EXPECT_EQ(run.result, "true");
  EXPECT_EQ(run.caller.status.raw[0], 0x41) << "only 256 of the 300 bytes are thrown away";
  EXPECT_EQ(run.wire().substr(0, run.wire().find("output")),
            "2 x input.read 128 -> " + shown(Bytes(128, 0x41)) + "\n");
}

TEST(LineStatusRequest, DoesNotWaitForPendingBytesIfNoneCanArrive) {
  Scenario scenario = lineModePrinter();
  scenario.script.expects = Script::Expects::Never;
  const Outcome run = scenario.run(getParsedStatus());
  EXPECT_EQ(run.result, "true");
  EXPECT_EQ(run.wire().find("slice"), std::string::npos);
}

TEST(LineStatusRequest, JoinsAReplyInPieces) {
  Scenario scenario = Scenario::in(lineMode);
  scenario.script.whenAsked(
      lineRequest, {{bytes("89 01")}, {bytes("02 00 00 00"), 0.04}, {bytes("04 00 05"), 0.3}});
  const Outcome run = scenario.run(getParsedStatus());
  EXPECT_EQ(run.result, "true");
  EXPECT_EQ(run.caller.status.offline, 1U);
  EXPECT_EQ(run.records(method), text(R"(
    Start | <status>, 2
    Process | p_emulation: 1
    Process | buffer.length < expectedSize: 2, 9
    Process | buffer.length < expectedSize: 6, 9
    Process | readBuffer.length: 0
    Process | Receive Status, Length: 9, Raw: <89 01 02 00 00 00 04 00 05>
    End | <status>, 2, -> 1
  )"));
}

TEST(LineStatusRequest, StoresExactlyAsManyBytesAsTheReplyAnnounces) {
  Scenario scenario = lineModePrinter(lineStatus() + Bytes(100, 0x77));
  const Outcome run = scenario.run(inTurn({getParsedStatus(), read(200)}));
  EXPECT_EQ(run.result, "true; <>") << "bytes beyond it are dropped";
  EXPECT_EQ(run.caller.status.rawLength, 9U);
  EXPECT_EQ(run.caller.status.raw[9], 0xee);
}

TEST(LineStatusRequest, AcceptsEveryLengthThatAReplyCanAnnounce) {
  for (unsigned first = 0; first < 256; ++first) {
    const std::size_t length = std::max(1U, first & 0x3fU);
    Bytes reply(length, 0xff);
    reply[0] = static_cast<std::uint8_t>(first);
    const Outcome run = lineModePrinter(reply).run(getParsedStatus());
    EXPECT_EQ(run.result, "true") << first;
    EXPECT_EQ(run.caller.status.rawLength, length);
    EXPECT_EQ(run.caller.status.coverOpen, length > 2 ? 1U : 0U);
  }
}

TEST(LineStatusRequest, IsSentTwiceWithTenReadsEach) {
  const Outcome run = Scenario::in(lineMode).run(getParsedStatus());
  EXPECT_EQ(run.result, "false");
  EXPECT_EQ(run.wire(), text(R"(
    slice for input 0.1
    2 x {
      output.write <1b 2a 72 42 1b 1d 03 04 00 00 1b 06 01> -> 13
      slice for input 0.1
      usleep 50000
      slice for input 0.1
      usleep 50000
      slice for input 0.1
      usleep 50000
      slice for input 0.1
      usleep 50000
      slice for input 0.1
      usleep 50000
      slice for input 0.1
      usleep 50000
      slice for input 0.1
      usleep 50000
      slice for input 0.1
      usleep 50000
      slice for input 0.1
      usleep 50000
      slice for input 0.1
      usleep 50000
    }
  )")) << "a sleep follows the tenth read too, and nothing is thrown away in between";
  EXPECT_EQ(run.records(method), text(R"(
    Start | <status>, 2
    Process | p_emulation: 1
    20 x Process | readBuffer.length: 0
    End | <status>, 2, -> 0
  )"));
}

TEST(LineStatusRequest, DoesNotChangeTheRecordIfTheReplyIsIncomplete) {
  Scenario scenario = Scenario::in(lineMode);
  scenario.script.wheneverAsked(lineRequest, whole(bytes("89 01 ff ff")));
  const Outcome run = scenario.run(getParsedStatus());
  EXPECT_EQ(run.result, "false");
  const Caller untouched;
  EXPECT_EQ(std::memcmp(&run.caller.status, &untouched.status, sizeof untouched.status), 0);
}

TEST(LineStatusRequest, StartsTheSecondAttemptWithAnEmptyBuffer) {
  Scenario scenario = Scenario::in(lineMode);
  scenario.script.whenAsked(lineRequest, whole(bytes("89 01 ff")))
      .whenAsked(lineRequest, whole(lineStatus({}, 2)));
  const Outcome run = scenario.run(getParsedStatus());
  EXPECT_EQ(run.result, "true");
  EXPECT_EQ(run.caller.status.etbCounter, 2);
}

TEST(LineStatusRequest, UsesALateReplyToTheFirstAttemptAsTheReplyToTheSecond) {
  Scenario scenario = Scenario::in(lineMode);
  scenario.script.whenAsked(lineRequest, {{lineStatus({}, 1), 1.49}})
      .whenAsked(lineRequest, whole(lineStatus({}, 2)));
  const Outcome run = scenario.run(getParsedStatus());
  EXPECT_EQ(run.result, "true");
  EXPECT_EQ(run.caller.status.etbCounter, 1);
}

TEST(LineStatusRequest, ThrowsIfItsCommandCannotBeWritten) {
  Scenario scenario = lineModePrinter();
  scenario.script.writeReturns(1, -1);
  const Outcome run = scenario.run(getParsedStatus(7));
  EXPECT_EQ(run.result, "PortException: Native WritePort failed");
  EXPECT_EQ(run.records(method), text(R"(
    Start | <status>, 7
    Process | p_emulation: 1
    Error | Fail to [self writeWithRetry:commandData], <self>, <address>
    End | <status>, 7
  )"));
}

TEST(LineStatusRequest, TreatsAShortWriteAsAFailedWrite) {
  Scenario scenario = lineModePrinter();
  // The link takes 7 of 13 bytes, then the remaining 6. The port compares the sum, 13, with the 6
  // bytes of the rest, and sends the rest again.
  scenario.script.takesInAttempts({7, 6});
  scenario.script.isLostAfterBytes(13);
  EXPECT_EQ(scenario.run(getParsedStatus()).result, "PortException: Native WritePort failed");
  scenario = lineModePrinter();
  // The link takes 5 of 13 bytes, then 3 of the remaining 8. The port compares the sum with the
  // length of the rest. Both are 8, so it sends no more.
  scenario.script.takesInAttempts({5, 3});
  EXPECT_EQ(scenario.run(getParsedStatus()).result, "PortException: Native WritePort failed");
}

TEST(LineStatusRequest, ThrowsIfTheLinkIsLostBeforeItsCommand) {
  Scenario scenario = lineModePrinter();
  scenario.script.isLost();
  EXPECT_EQ(scenario.run(getParsedStatus()).result, "PortException: Native WritePort failed");
}

TEST(LineStatusRequest, ThrowsWhenTheLinkIsLostDuringTheWait) {
  Scenario scenario = Scenario::in(lineMode);
  scenario.script.isLost(0.3);
  const Outcome run = scenario.run(getParsedStatus());
  EXPECT_EQ(run.result, "PortException: GetParsedStatus detected bluetooth disconnection");
  EXPECT_EQ(run.records(method), text(R"(
    Start | <status>, 2
    Process | p_emulation: 1
    2 x Process | readBuffer.length: 0
    Error | self.isConnected, 0
    End | <status>, 2
  )"));
}

TEST(LineStatusRequest, LogsALostConnectionWithTheResultOfASecondCheck) {
  Scenario scenario = Scenario::in(lineMode);
  scenario.script.saysConnected({true, true, true, false, true});
  const Outcome run = scenario.run(getParsedStatus());
  EXPECT_EQ(run.result, "PortException: GetParsedStatus detected bluetooth disconnection");
  const std::string all = run.all();
  EXPECT_EQ(all.substr(all.find("accessory.isConnected 0")), text(R"(
    accessory.isConnected 0
    End isConnected | -> 0
    Start isConnected |
    accessory.isConnected 1
    End isConnected | -> 1
    Error getParsedStatus:level: | self.isConnected, 1
    End getParsedStatus:level: | <status>, 2
  )")) << "its own records precede the one that shows it";
}

TEST(LineStatusRequest, ChecksALostConnectionOnlyOnceIfLoggingIsOff) {
  Scenario scenario = Scenario::in(lineMode);
  scenario.logging = false;
  scenario.script.saysConnected({true, true, true, false, true});
  const Outcome run = scenario.run(getParsedStatus());
  EXPECT_TRUE(run.all().ends_with("accessory.isConnected 0\n"));
}

TEST(LineStatusRequest, LogsAFailedReadAndContinues) {
  Scenario scenario = Scenario::in(lineMode);
  scenario.script.whenAsked(lineRequest, whole(lineStatus())).readReturns(1, -1);
  const Outcome run = scenario.run(getParsedStatus());
  EXPECT_EQ(run.result, "true");
  EXPECT_EQ(run.records(method), text(R"(
    Start | <status>, 2
    Process | p_emulation: 1
    Process | readBuffer: 0x0
    Process | Receive Status, Length: 9, Raw: <89 01 00 00 00 00 00 00 05>
    End | <status>, 2, -> 1
  )"));
}

TEST(LineStatusRequest, LogsALevelAboveTheSigned32BitRangeAsNegative) {
  const Outcome run = lineModePrinter().run(getParsedStatus(4294967295U));
  EXPECT_EQ(run.records(method).substr(0, 21), "Start | <status>, -1\n");
}

TEST(StatusOfAnUnknownEmulation, FailsWithoutARequestToThePrinter) {
  Scenario scenario = Scenario::in(unknownEmulation);
  scenario.script.delivers(bytes("01 02"));
  const Outcome run = scenario.run(getParsedStatus());
  EXPECT_EQ(run.result, "false");
  EXPECT_EQ(run.wire(), "input.read 128 -> <01 02>\n") << "the pending bytes are thrown away";
  EXPECT_EQ(run.records(method), text(R"(
    Start | <status>, 2
    Process | p_emulation: 0
    End | <status>, 2, -> 0
  )"));
  const Caller untouched;
  EXPECT_EQ(std::memcmp(&run.caller.status, &untouched.status, sizeof untouched.status), 0);
}

}  // namespace
}  // namespace quordalvane::test
