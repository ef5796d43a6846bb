#include <gtest/gtest.h>

#include "tests/unit/port/Printer.h"

namespace quordalvane::test {
namespace {

const Bytes lineQuery = bytes("1b 23 2a 0a 00");
const Bytes escPosQuery = bytes("1d 49 41");

Bytes lineReply(std::string_view firmware) {
  return bytes("1b 23 2a") + ascii(firmware) + bytes("0a 00");
}

bool hasFirmware(const Outcome& run, const std::string& shownText) {
  return run.properties.starts_with("firmwareInformation " + shownText + "\n");
}

TEST(FirmwareText, IsRequestedAfterTheStatusInLineMode) {
  Scenario scenario = lineModePrinter();
  scenario.script.whenAsked(lineQuery, whole(lineReply("V1.0")));
  const Outcome run = scenario.run(retrieveFirmwareInformation());
  EXPECT_EQ(run.result, "true");
  EXPECT_TRUE(hasFirmware(run, "\"V1.0\""));
  EXPECT_EQ(run.wire(), text(R"(
    slice for input 0.1
    output.write <1b 2a 72 42 1b 1d 03 04 00 00 1b 06 01> -> 13
    input.read 128 -> <89 01 00 00 00 00 00 00 05>
    output.write <1b 23 2a 0a 00> -> 5
    input.read 128 -> <1b 23 2a 56 31 2e 30 0a 00>
  )"));
  EXPECT_EQ(run.records("retrieveFirmwareInformation"), "Start |\nEnd | -> 1\n");
  EXPECT_EQ(run.records("retrieveFirmwareInformation2"), text(R"(
    Start |
    Process | Find FW Info, Position: 3, Raw: <56 31 2e 30>
    End | -> 1
  )"));
}

TEST(FirmwareText, IsRequestedAfterTheStatusInEscPos) {
  Scenario scenario = escPosPrinter();
  scenario.script.whenAsked(escPosQuery, whole(bytes("5f") + ascii("V2") + bytes("00")));
  const Outcome run = scenario.run(retrieveFirmwareInformation());
  EXPECT_EQ(run.result, "true");
  EXPECT_TRUE(hasFirmware(run, "\"V2\""));
  EXPECT_TRUE(run.sent() == dataCancelEnd + drawerQuery + coverQuery + paperQuery + escPosQuery);
  EXPECT_EQ(run.records("retrieveESCPOSFirmwareInformation"), text(R"(
    Start |
    Process | _firmwareInformation: V2
    End | -> 1
  )"));
}

TEST(FirmwareText, IsNotRequestedIfTheStatusFails) {
  const Outcome run = Scenario::in(lineMode).run(retrieveFirmwareInformation());
  EXPECT_EQ(run.result, "false");
  EXPECT_EQ(run.records("retrieveFirmwareInformation"), text(R"(
    Start |
    Error | Fail to [self getParsedStatus:&status level:2], <self>, <address>, 2
    End | -> 0
  )"));
}

TEST(FirmwareText, IsNotRequestedIfThePrinterIsOffLine) {
  const Outcome run = lineModePrinter(lineStatus({offlineFlag})).run(retrieveFirmwareInformation());
  EXPECT_EQ(run.result, "false");
  EXPECT_EQ(run.sent(), lineRequest);
  EXPECT_EQ(run.records("retrieveFirmwareInformation"), text(R"(
    Start |
    Error | status.offline, 1
    End | -> 0
  )"));
}

TEST(FirmwareText, IsNotRequestedIfTheStatusThrowsAPortException) {
  Scenario scenario = lineModePrinter();
  scenario.script.isLost();
  const Outcome run = scenario.run(retrieveFirmwareInformation());
  EXPECT_EQ(run.result, "false");
  EXPECT_EQ(run.records("retrieveFirmwareInformation"), text(R"(
    Start |
    Error | Fail to [self getParsedStatus:&status level:2], <self>, <address>, 2, Native WritePort failed
    End | -> 0
  )"));
}

TEST(FirmwareText, IsNotRequestedInAnUnknownEmulation) {
  const Outcome run = Scenario::in(unknownEmulation).run(retrieveFirmwareInformation());
  EXPECT_EQ(run.result, "false");
  EXPECT_EQ(run.sent(), Bytes{});
}

TEST(FirmwareText, IsReadByTheLineModeQueryEvenInAnUnknownEmulation) {
  Scenario scenario = Scenario::in(unknownEmulation);
  scenario.script.whenAsked(lineQuery, whole(lineReply("X")));
  EXPECT_EQ(scenario.run(retrieveFirmwareInformation2()).result, "true");
}

TEST(FirmwareText, RemainsUnchangedIfALaterQueryFails) {
  Scenario scenario = Scenario::in(lineMode, 0);
  scenario.script.whenAsked(lineQuery, whole(lineReply("old")));
  const Outcome run =
      scenario.run(inTurn({retrieveFirmwareInformation2(), retrieveFirmwareInformation2()}));
  EXPECT_EQ(run.result, "true; false");
  EXPECT_TRUE(hasFirmware(run, "\"old\""));
}

TEST(FirmwareText, ReplacesTheTextOfAnEarlierQuery) {
  Scenario scenario = Scenario::in(lineMode);
  scenario.script.whenAsked(lineQuery, whole(lineReply("old")))
      .whenAsked(lineQuery, whole(lineReply("new")));
  const Outcome run =
      scenario.run(inTurn({retrieveFirmwareInformation2(), retrieveFirmwareInformation2()}));
  EXPECT_TRUE(hasFirmware(run, "\"new\""));
}

TEST(LineModeFirmware, IsNotReadIfItsRequestCannotBeWritten) {
  Scenario scenario = Scenario::in(lineMode);
  scenario.script.writeReturns(1, -1);
  const Outcome run = scenario.run(retrieveFirmwareInformation2());
  EXPECT_EQ(run.result, "false");
  EXPECT_EQ(run.records("read:"), "");
  EXPECT_EQ(run.records("retrieveFirmwareInformation2"), text(R"(
    Start |
    Error | Fail to [self writeWithRetry:fwRequest], <self>, <address>
    End | -> 0
  )"));
}

TEST(LineModeFirmware, IsPolledEvery200MillisecondsUntilTheTimeout) {
  const Outcome run = Scenario::in(lineMode, 1000).run(retrieveFirmwareInformation2());
  EXPECT_EQ(run.result, "false");
  EXPECT_EQ(run.wire(), text(R"(
    output.write <1b 23 2a 0a 00> -> 5
    7 x {
      slice for input 0.1
      usleep 200000
    }
    slice for input 0.1
  )")) << "the last pass ends without a sleep";
  EXPECT_EQ(run.records("retrieveFirmwareInformation2"), text(R"(
    Start |
    Error | end.tv_sec - start.tv_sec > timeout_ / 1000, 1000002, 1000000, 1
    End | -> 0
  )"));
}

TEST(LineModeFirmware, TreatsATimeoutBelow1000MillisecondsAs0Seconds) {
  Scenario scenario = Scenario::in(lineMode, 999);
  scenario.script.startsPastTheSecond(650000);
  const Outcome run = scenario.run(retrieveFirmwareInformation2());
  EXPECT_EQ(run.wire(), text(R"(
    output.write <1b 23 2a 0a 00> -> 5
    slice for input 0.1
    usleep 200000
    slice for input 0.1
  )"));
}

TEST(LineModeFirmware, IsNotFoundIfItArrivesInTwoReads) {
  Scenario scenario = Scenario::in(lineMode, 0);
  const Bytes reply = lineReply("V1.0");
  for (std::size_t cut = 1; cut < reply.size(); ++cut) {
    const auto place = reply.begin() + static_cast<std::ptrdiff_t>(cut);
    scenario.script = Script();
    scenario.script.whenAsked(lineQuery,
                              {{Bytes(reply.begin(), place)}, {Bytes(place, reply.end()), 0.15}});
    EXPECT_EQ(scenario.run(retrieveFirmwareInformation2()).result, "false") << cut;
  }
}

TEST(LineModeFirmware, IsFoundAfterOtherBytes) {
  Scenario scenario = Scenario::in(lineMode);
  scenario.script.whenAsked(lineQuery, whole(bytes("00 1b 23") + lineReply("V9")));
  const Outcome run = scenario.run(retrieveFirmwareInformation2());
  EXPECT_TRUE(hasFirmware(run, "\"V9\""));
  EXPECT_NE(run.records("retrieveFirmwareInformation2").find("Position: 6, Raw: <56 39>"),
            std::string::npos);
}

TEST(LineModeFirmware, IsAwaitedUntilTheTimeoutEvenIfTheLinkIsLost) {
  Scenario scenario = Scenario::in(lineMode, 1000);
  scenario.script.isLostAfterBytes(5);
  const Outcome run = scenario.run(retrieveFirmwareInformation2());
  EXPECT_EQ(run.result, "false");
  EXPECT_NE(run.records("retrieveFirmwareInformation2").find("1000002, 1000000, 1"),
            std::string::npos);
}

TEST(EscPosFirmware, IsNotReadIfItsRequestCannotBeWritten) {
  Scenario scenario = Scenario::in(escPos);
  scenario.script.writeReturns(1, -1);
  const Outcome run = scenario.run(retrieveESCPOSFirmwareInformation());
  EXPECT_EQ(run.result, "false");
  EXPECT_EQ(run.records("retrieveESCPOSFirmwareInformation"), text(R"(
    Start |
    Error | Fail to [self writeWithRetry:modelRequestCommand], <self>, <address>
    End | -> 0
  )"));
}

TEST(EscPosFirmware, IsPolledEvery100MillisecondsUntilTheTimeout) {
  const Outcome run = Scenario::in(escPos, 1000).run(retrieveESCPOSFirmwareInformation());
  EXPECT_EQ(run.result, "false");
  EXPECT_EQ(run.wire(), text(R"(
    output.write <1d 49 41> -> 3
    10 x {
      slice for input 0.1
      usleep 100000
    }
    slice for input 0.1
  )"));
  EXPECT_NE(run.records("retrieveESCPOSFirmwareInformation")
                .find("Error | end.tv_sec - start.tv_sec > timeout_ / 1000, 1000002, 1000000, 1\n"),
            std::string::npos);
}

TEST(EscPosFirmware, IsTakenFromTheFirstReadEvenIfTheReplyIsIncomplete) {
  Scenario scenario = Scenario::in(escPos);
  scenario.script.whenAsked(escPosQuery, {{bytes("5f 41 42"), 0.15}, {bytes("43 00"), 0.5}});
  const Outcome run = scenario.run(retrieveESCPOSFirmwareInformation());
  EXPECT_EQ(run.result, "true");
  EXPECT_TRUE(hasFirmware(run, "\"A\""));
}

TEST(EscPosFirmware, MayBeEmpty) {
  Scenario scenario = Scenario::in(escPos);
  scenario.script.whenAsked(escPosQuery, whole(bytes("5f 00")));
  const Outcome run = scenario.run(retrieveESCPOSFirmwareInformation());
  EXPECT_EQ(run.result, "true");
  EXPECT_TRUE(hasFirmware(run, "\"\""));
}

TEST(EscPosFirmware, ThrowsARangeErrorAndKeepsTheEarlierFirmwareTextIfTheReplyHasOneByte) {
  Scenario scenario = escPosPrinter();
  scenario.script.whenAsked(escPosQuery, whole(bytes("5f 41 00")))
      .whenAsked(escPosQuery, whole(bytes("5f")));
  const Outcome run =
      scenario.run(inTurn({retrieveESCPOSFirmwareInformation(), retrieveFirmwareInformation()}));
  EXPECT_EQ(run.result, "true; std::out_of_range");
  EXPECT_TRUE(hasFirmware(run, "\"A\""));
  EXPECT_EQ(run.records("retrieveFirmwareInformation"), "Start |\n");
}

TEST(EscPosFirmware, HasOneCharacterForEachByte) {
  Scenario scenario = Scenario::in(escPos);
  scenario.script.whenAsked(escPosQuery, whole(bytes("ff 41 80 c3 a4 ff 42 fe")));
  const Outcome run = scenario.run(retrieveESCPOSFirmwareInformation());
  EXPECT_TRUE(hasFirmware(run,
                          "\"A\xef\xbf\xbd\xef\xbf\xbd\xef\xbf\xbd\xef\xbf\xbd"
                          "B\""))
      << run.properties;
}

}  // namespace
}  // namespace quordalvane::test
