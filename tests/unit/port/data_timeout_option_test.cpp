#include <gtest/gtest.h>

#include "tests/support/LogCapture.h"
#include "tests/unit/port/Printer.h"

namespace quordalvane::test {
namespace {

const std::string method = "parseDataTimeoutOption";

struct Parsed {
  std::int64_t seconds;
  std::string records;
};

Parsed parsed(std::optional<std::string> settings) {
  ScriptedWorld world;
  const Logging logging(true);
  const auto port = ExternalAccessoryPort::initWithPortName("BT:", std::move(settings), 0,
                                                            ZKEmulationQuorLine, world.platform());
  return {port->dataTimeoutSeconds(), recordsOf(world.trace().lines(), method)};
}

std::string withoutMatch(const std::string& settings, std::size_t length) {
  return "Start |\nProcess | [regex matchesInString:portSettings_ options:0 range:NSMakeRange(0, "
         "portSettings_.length)].count == 0, d[0-9]+, " +
         settings + ", 0, 0, " + std::to_string(length) + ", 0\nEnd |\n";
}

TEST(DataTimeoutOption, IsTheFirstNumberThatDirectlyFollowsALowerCaseD) {
  const std::pair<const char*, std::int64_t> rows[] = {
      {"d10", 10},  {"mini;d255", 255}, {"d3;d7", 3},      {"abcd12x", 12}, {"d0", 0},
      {"d000", 0},  {"d0255", 255},     {"dd5", 5},        {"d d7", 7},     {"dxd9", 9},
      {"d1d2", 1},  {"ddddd1", 1},      {"D1d2", 2},       {"\nd4\n", 4},   {"d12.5", 12},
      {"d-1d6", 6}, {"d 5d8 ", 8},      {"d00000255", 255}};
  for (const auto& [settings, seconds] : rows) {
    const Parsed result = parsed(settings);
    EXPECT_EQ(result.seconds, seconds) << settings;
    EXPECT_EQ(result.records,
              "Start |\nProcess | dataTimeout: " + std::to_string(seconds) + "\nEnd |\n");
  }
}

TEST(DataTimeoutOption, IsMissingIfNoDigitFollowsALowerCaseD) {
  for (const std::string& settings :
       {std::string(), std::string("D10"), std::string("d"), std::string("mini"), std::string("dd"),
        std::string("d-5"), std::string("5d"), std::string("d\xd9\xa3"),
        std::string("d\0"
                    "5",
                    3)}) {
    const Parsed result = parsed(settings);
    EXPECT_EQ(result.seconds, -1) << settings;
    EXPECT_EQ(result.records, withoutMatch(settings, settings.size()));
  }
}

TEST(DataTimeoutOption, IsMissingWithoutSettings) {
  const Parsed result = parsed(std::nullopt);
  EXPECT_EQ(result.seconds, -1);
  EXPECT_EQ(result.records, withoutMatch("(null)", 0));
}

TEST(DataTimeoutOption, IsIgnoredAbove255) {
  const std::pair<const char*, const char*> rows[] = {{"d256", "256"},
                                                      {"d300;d5", "300"},
                                                      {"d2147483647", "2147483647"},
                                                      {"d2147483648", "2147483647"},
                                                      {"d4294967306", "2147483647"},
                                                      {"d99999999999", "2147483647"},
                                                      {"d18446744073709551626", "2147483647"}};
  for (const auto& [settings, shownValue] : rows) {
    const Parsed result = parsed(settings);
    EXPECT_EQ(result.seconds, -1) << settings;
    EXPECT_EQ(result.records, std::string("Start |\nError | dataTimeout > MAX_DATA_TIMEOUT, ") +
                                  shownValue + ", 255\nEnd |\n");
  }
}

TEST(DataTimeoutOption, IsFoundInSettingsOf10Megabytes) {
  const std::size_t much = 10U << 20U;
  EXPECT_EQ(parsed(std::string(much, 'd')).seconds, -1);
  EXPECT_EQ(parsed(std::string(much, 'd') + "7").seconds, 7);
  EXPECT_EQ(parsed("d" + std::string(much, '9')).seconds, -1);
  EXPECT_EQ(parsed("d" + std::string(much, '0') + "8").seconds, 8);
  EXPECT_EQ(parsed(std::string(much, 'x')).seconds, -1);
}

}  // namespace
}  // namespace quordalvane::test
