#include <gtest/gtest.h>

#include "tests/unit/port/Printer.h"

namespace quordalvane::test {
namespace {

const Bytes request = bytes("1b 23 2c 31 0a 00");
const std::string method = "retrieveButtonSecurityTimeout";

Scenario withSetting(unsigned setting, std::uint32_t timeout = 10000) {
  Scenario scenario = Scenario::in(lineMode, timeout);
  scenario.script.whenAsked(
      request, whole(bytes("1b 23 2c 31") + Bytes{static_cast<std::uint8_t>(setting), 0, 0x0a}));
  return scenario;
}

TEST(ButtonSecurityTimeout, DependsOnTheTopTwoBitsOfTheFifthByteOnly) {
  const std::int64_t times[] = {20000 + 1234, 10000 + 1234, 5000 + 1234, 0};
  const char* const shownTimes[] = {"20000", "10000", "5000", "0"};
  for (unsigned setting = 0; setting < 256; ++setting) {
    const Outcome run = withSetting(setting, 1234).run(retrieveButtonSecurityTimeout());
    EXPECT_EQ(run.result, std::to_string(times[setting >> 6U])) << setting;
    EXPECT_EQ(run.records(method),
              std::string("Start |\nEnd | -> ") + shownTimes[setting >> 6U] + "\n")
        << "without the time-out that is added";
  }
}

TEST(ButtonSecurityTimeout, IsReadFromExactlySevenBytes) {
  Scenario scenario = withSetting(0x45);
  scenario.script.delivers(bytes("99"), 0.05);
  const Outcome run = scenario.run(inTurn({retrieveButtonSecurityTimeout(), read(9)}));
  EXPECT_EQ(run.result, "20000; <99>");
  EXPECT_EQ(run.wire(), text(R"(
    output.write <1b 23 2c 31 0a 00> -> 6
    input.read 7 -> <1b 23 2c 31 45 00 0a>
    slice for input 0.1
    input.read 9 -> <99>
  )"));
}

TEST(ButtonSecurityTimeout, QueryReadsTheClockTwiceBeforeItReadsTheReply) {
  const std::string all = withSetting(0x45).run(retrieveButtonSecurityTimeout()).all();
  const std::size_t written = all.find("End writeWithRetry: | ");
  const std::string_view between =
      std::string_view(all).substr(written, all.find("Start read: | ") - written);
  EXPECT_NE(between.find("\ngettimeofday 1000000.000000\ngettimeofday 1000000.000000\n"),
            std::string::npos)
      << between;
}

TEST(ButtonSecurityTimeout, IsReadFromAReplyInPieces) {
  Scenario scenario = Scenario::in(lineMode);
  scenario.script.whenAsked(request, {{bytes("1b 23 2c")}, {bytes("31 85 00 0a"), 0.1}});
  const Outcome run = scenario.run(retrieveButtonSecurityTimeout());
  EXPECT_EQ(run.result, "15000");
  EXPECT_EQ(run.wire(), text(R"(
    output.write <1b 23 2c 31 0a 00> -> 6
    input.read 7 -> <1b 23 2c>
    usleep 200000
    input.read 4 -> <31 85 00 0a>
  )"));
}

TEST(ButtonSecurityTimeout, IsReadFromAnySevenBytes) {
  Scenario scenario = Scenario::in(lineMode, 0);
  scenario.script.whenAsked(request, whole(bytes("00 00 00 00 80 00 00")));
  EXPECT_EQ(scenario.run(retrieveButtonSecurityTimeout()).result, "5000");
}

TEST(ButtonSecurityTimeout, WrapsAt32Bits) {
  EXPECT_EQ(withSetting(0x00, 4294967295U).run(retrieveButtonSecurityTimeout()).result, "19999");
  EXPECT_EQ(withSetting(0x40, 4294957296U).run(retrieveButtonSecurityTimeout()).result, "0");
  EXPECT_EQ(withSetting(0x80, 4294962295U).run(retrieveButtonSecurityTimeout()).result,
            "4294967295");
  EXPECT_EQ(withSetting(0xc0, 4294967295U).run(retrieveButtonSecurityTimeout()).result, "0");
}

TEST(ButtonSecurityTimeout, IsAnErrorIfTheReplyRemainsTooShort) {
  Scenario scenario = Scenario::in(lineMode, 1000);
  scenario.script.whenAsked(request, whole(bytes("1b 23 2c 31 45 00")));
  const Outcome run = scenario.run(retrieveButtonSecurityTimeout());
  EXPECT_EQ(run.result, "-1");
  EXPECT_EQ(run.records(method), text(R"(
    Start |
    Error | end.tv_sec - start.tv_sec > timeout_ / 1000, 1000002, 1000000, 1
    End | -> -1
  )"));
  EXPECT_EQ(run.wire(), text(R"(
    output.write <1b 23 2c 31 0a 00> -> 6
    input.read 7 -> <1b 23 2c 31 45 00>
    7 x {
      usleep 200000
      slice for input 0.1
    }
  )"));
}

TEST(ButtonSecurityTimeout, LogsTheTimeLimitOfItsQueryAsUnsigned) {
  Scenario scenario = Scenario::in(lineMode, 4294967295U);
  scenario.script.stepsClock(3, 5000000).stepsClock(4, 5000000);
  const Outcome run = scenario.run(retrieveButtonSecurityTimeout());
  EXPECT_EQ(run.result, "-1");
  EXPECT_NE(run.records(method).find(", 4294967\n"), std::string::npos) << run.records(method);
}

TEST(ButtonSecurityTimeout, IsNotReadIfItsRequestCannotBeWritten) {
  Scenario scenario = Scenario::in(lineMode);
  scenario.script.writeReturns(1, -1);
  const Outcome run = scenario.run(retrieveButtonSecurityTimeout());
  EXPECT_EQ(run.result, "-1");
  EXPECT_EQ(run.records("read:"), "");
  EXPECT_EQ(run.records(method), text(R"(
    Start |
    Error | Fail to [self writeWithRetry:data], <self>, <address>
    End | -> -1
  )"));
}

TEST(ButtonSecurityTimeout, QueryWaitsUntilTheTimeLimitEvenIfTheLinkIsLost) {
  Scenario scenario = Scenario::in(lineMode, 1000);
  scenario.script.isLostAfterBytes(6);
  const Outcome run = scenario.run(retrieveButtonSecurityTimeout());
  EXPECT_EQ(run.result, "-1");
  EXPECT_NE(run.records(method).find("1000002, 1000000, 1"), std::string::npos);
}

}  // namespace
}  // namespace quordalvane::test
