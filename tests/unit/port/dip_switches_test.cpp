#include <gtest/gtest.h>

#include "tests/unit/port/Printer.h"

namespace quordalvane::test {
namespace {

const Bytes bank1Request = bytes("1b 23 2c 31 0a 00");
const Bytes bank2Request = bytes("1b 23 2c 32 0a 00");

Scenario answering(const char* bank1, const char* bank2, std::uint32_t timeout = 10000) {
  Scenario scenario = Scenario::in(lineMode, timeout);
  scenario.script.wheneverAsked(bank1Request, whole(bytes("1b 23 2c 31") + bytes(bank1)))
      .wheneverAsked(bank2Request, whole(bytes("1b 23 2c 32") + bytes(bank2)));
  return scenario;
}

bool hasBanks(const Outcome& run, const std::string& banks) {
  return run.properties.find("dipSwitchInformation" + banks + "\n") != std::string::npos;
}

TEST(DipSwitches, AreReadOneBankAfterTheOther) {
  const Outcome run = answering("c0 01 0a", "02 03 0a").run(retrieveDipSwitchInformation());
  EXPECT_EQ(run.result, "true");
  EXPECT_TRUE(hasBanks(run, " <c0 01> <02 03>"));
  EXPECT_EQ(run.wire(), text(R"(
    output.write <1b 23 2c 31 0a 00> -> 6
    input.read 128 -> <1b 23 2c 31 c0 01 0a>
    output.write <1b 23 2c 32 0a 00> -> 6
    input.read 128 -> <1b 23 2c 32 02 03 0a>
  )"));
  EXPECT_EQ(run.records("retrieveDipSwitchInformation"), "Start |\nEnd | -> 1\n");
  EXPECT_EQ(run.records("retrieveDipSwitchInformation:"), text(R"(
    Start | 1
    Process | Find DIPSW Info, Position: 4, Raw: <1b 23>
    End | 1, -> <c0 01>
    Start | 2
    Process | Find DIPSW Info, Position: 4, Raw: <1b 23>
    End | 2, -> <02 03>
  )")) << "the bytes shown are the first of the chunk";
}

TEST(DipSwitches, AreRequestedWithTheSameBytesInEveryEmulation) {
  for (const std::int32_t emulation : {unknownEmulation, escPos}) {
    Scenario scenario = answering("c0 01 0a", "02 03 0a");
    scenario.creation.emulation = emulation;
    const Outcome run = scenario.run(retrieveDipSwitchInformation());
    EXPECT_EQ(run.sent(), bank1Request + bank2Request);
  }
}

TEST(DipSwitches, AreAppendedToTheBanksOfAnEarlierRequest) {
  const Outcome run =
      answering("c0 01 0a", "02 03 0a")
          .run(inTurn({retrieveDipSwitchInformation(), retrieveDipSwitchInformation()}));
  EXPECT_EQ(run.result, "true; true");
  EXPECT_TRUE(hasBanks(run, " <c0 01> <02 03> <c0 01> <02 03>"));
}

TEST(DipSwitches, KeepBank1IfBank2CannotBeRead) {
  Scenario scenario = Scenario::in(lineMode, 0);
  scenario.script.whenAsked(bank1Request, whole(bytes("1b 23 2c 31 c0 01 0a")));
  const Outcome run = scenario.run(retrieveDipSwitchInformation());
  EXPECT_EQ(run.result, "false");
  EXPECT_TRUE(hasBanks(run, " <c0 01>"));
  EXPECT_EQ(run.records("retrieveDipSwitchInformation"), text(R"(
    Start |
    Error | Fail to [[self retrieveDipSwitchInformation:2] retain], <self>, 2
    End | -> 0
  )"));
}

TEST(DipSwitches, RequestNoBank2IfBank1CannotBeRead) {
  const Outcome run = Scenario::in(lineMode, 0).run(retrieveDipSwitchInformation());
  EXPECT_EQ(run.result, "false");
  EXPECT_EQ(run.sent(), bank1Request);
  EXPECT_NE(
      run.records("retrieveDipSwitchInformation")
          .find("Error | Fail to [[self retrieveDipSwitchInformation:1] retain], <self>, 1\n"),
      std::string::npos);
}

TEST(DipSwitchBank, MayContainTheBytesThatBeginOrEndAReply) {
  for (const char* settings : {"0a 0a", "00 00", "1b 23", "0a 1b", "ff 0a"}) {
    const Outcome run = answering((std::string(settings) + " 0a").c_str(), "00 00 0a")
                            .run(retrieveDipSwitchBank(1));
    EXPECT_EQ(run.result, shown(bytes(settings)));
  }
}

TEST(DipSwitchBank, IsAnErrorIfItHasMoreThanTwoBytes) {
  const Outcome run = answering("01 02 03 0a", "00 00 0a").run(retrieveDipSwitchBank(1));
  EXPECT_EQ(run.result, "none");
  EXPECT_EQ(run.records("retrieveDipSwitchInformation:"), text(R"(
    Start | 1
    Process | Find DIPSW Info, Position: 4, Raw: <1b 23 2c>
    Error | [parsedData length] != 2, 3
    End | 1, -> 0x0
  )"));
}

TEST(DipSwitchBank, IsAwaitedFurtherIfAReplyHasFewerThanTwoBytes) {
  Scenario scenario = Scenario::in(lineMode);
  scenario.script.whenAsked(bank1Request,
                            {{bytes("1b 23 2c 31 c0 0a")}, {bytes("1b 23 2c 31 c1 02 0a"), 0.15}});
  EXPECT_EQ(scenario.run(retrieveDipSwitchBank(1)).result, "<c1 02>");
}

TEST(DipSwitchBank, IsPolledEvery200MillisecondsUntilTheTimeout) {
  const Outcome run = Scenario::in(lineMode, 1000).run(retrieveDipSwitchBank(2));
  EXPECT_EQ(run.result, "none");
  EXPECT_EQ(run.wire(), text(R"(
    output.write <1b 23 2c 32 0a 00> -> 6
    7 x {
      slice for input 0.1
      usleep 200000
    }
    slice for input 0.1
  )"));
  EXPECT_EQ(run.records("retrieveDipSwitchInformation:"), text(R"(
    Start | 2
    Error | end.tv_sec - start.tv_sec > timeout_ / 1000, 1000002, 1000000, 1
    End | 2, -> 0x0
  )"));
}

TEST(DipSwitchBank, IsNotReadIfItsRequestCannotBeWritten) {
  Scenario scenario = Scenario::in(lineMode);
  scenario.script.writeReturns(1, -1);
  const Outcome run = scenario.run(retrieveDipSwitchBank(1));
  EXPECT_EQ(run.result, "none");
  EXPECT_EQ(run.records("retrieveDipSwitchInformation:"), text(R"(
    Start | 1
    Error | Fail to [self writeWithRetry:dipswRequest], <self>, <address>
    End | 1, -> 0x0
  )"));
}

TEST(DipSwitchBank, IsRequestedByItsNumberPlusHex30) {
  const Outcome run = Scenario::in(lineMode, 0).run(retrieveDipSwitchBank(255));
  EXPECT_EQ(run.sent(), bytes("1b 23 2c 2f 0a 00")) << "the low eight bits of the sum";
}

TEST(DipSwitchBank, IsAwaitedUntilTheTimeoutEvenIfTheLinkIsLost) {
  Scenario scenario = Scenario::in(lineMode, 1000);
  scenario.script.isLostAfterBytes(6);
  const Outcome run = scenario.run(retrieveDipSwitchBank(1));
  EXPECT_EQ(run.result, "none");
  EXPECT_NE(run.records("retrieveDipSwitchInformation:").find("1000002, 1000000, 1"),
            std::string::npos);
}

}  // namespace
}  // namespace quordalvane::test
