#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <random>
#include <string>

#include "parsers/ReplyParsers.h"
#include "tests/unit/parsers/ReplyBytes.h"

namespace quordalvane::test {
namespace {

std::optional<Place> settings(const Bytes& bytes) {
  return found(parseDipSwitchInfo, bytes);
}

Bytes reply(char bank, const Bytes& settings) {
  return Bytes{0x1b, 0x23, 0x2c, static_cast<std::uint8_t>(bank)} + settings + Bytes{0x0a};
}

/// The place of the settings, as the comment on `parseDipSwitchInfo` defines it. This second
/// implementation searches the reply as a text.
std::optional<Place> settingsByText(const Bytes& bytes) {
  const std::string all(bytes.begin(), bytes.end());
  const std::size_t start = std::min(all.find("\x1b#,1"), all.find("\x1b#,2"));
  const std::size_t end = all.rfind('\n');
  if (start == std::string::npos || end == std::string::npos || end < start + 6) {
    return std::nullopt;
  }
  return Place{static_cast<std::int32_t>(start + 4), static_cast<std::int32_t>(end - start - 4)};
}

TEST(DipSwitchReply, IsFoundForEitherBankWithAnyPairOfSettingBytes) {
  for (const char bank : {'1', '2'}) {
    for (unsigned value = 0; value < 0x10000; ++value) {
      const Bytes pair = {static_cast<std::uint8_t>(value >> 8), static_cast<std::uint8_t>(value)};
      ASSERT_EQ(settings(reply(bank, pair)), (Place{4, 2})) << value;
    }
  }
}

TEST(DipSwitchReply, IsNotFoundForAnyOtherBank) {
  for (int digit = 0; digit < 256; ++digit) {
    if (digit != '1' && digit != '2') {
      EXPECT_EQ(settings(reply(static_cast<char>(digit), {0x12, 0x34})), std::nullopt) << digit;
    }
  }
}

TEST(DipSwitchReply, IsNotFoundWithFewerThanTwoSettingBytes) {
  EXPECT_EQ(settings(reply('1', {})), std::nullopt);
  EXPECT_EQ(settings(reply('1', {0x40})), std::nullopt);
  EXPECT_EQ(settings(reply('1', {0x0a})), std::nullopt);
}

TEST(DipSwitchReply, SettingsEndAtTheLastLineFeedOfTheInput) {
  EXPECT_EQ(settings(reply('1', {0x12, 0x34, 0x56})), (Place{4, 3}));
  EXPECT_EQ(settings(reply('1', {0x12, 0x34}) + Bytes{0x0a}), (Place{4, 3}));
  EXPECT_EQ(settings(reply('1', {0x12, 0x34}) + reply('2', {0x56, 0x78})), (Place{4, 9}));
}

TEST(DipSwitchReply, SettingsExcludeBytesAfterTheLastLineFeed) {
  EXPECT_EQ(settings(reply('2', {0x12, 0x34}) + Bytes{0x00, 0x89}), (Place{4, 2}));
}

TEST(DipSwitchReply, IsFoundAfterNoise) {
  for (const Bytes& noise : {Bytes{0x0a}, Bytes{0x1b}, Bytes{0x1b, 0x23, 0x2c},
                             Bytes{0x1b, 0x23, 0x2c, 0x33}, Bytes{0x1b, 0x23, 0x2a, 0x41, 0x0a}}) {
    EXPECT_EQ(settings(noise + reply('1', {0x01, 0x02})),
              (Place{static_cast<std::int32_t>(noise.size()) + 4, 2}));
  }
}

TEST(DipSwitchReply, IsNotFoundIfTheOnlyLineFeedsPrecedeTheReply) {
  EXPECT_EQ(settings(Bytes(20, 0x0a) + Bytes{0x1b, 0x23, 0x2c, 0x31, 0x01, 0x02}), std::nullopt);
}

TEST(DipSwitchReply, IsNotFoundIfItIsCutOff) {
  for (const Bytes& pair : {Bytes{0x12, 0x34}, Bytes{0x0a, 0x0a}, Bytes{0x1b, 0x00}}) {
    const Bytes whole = reply('1', pair);
    for (auto end = whole.begin(); end != whole.end(); ++end) {
      EXPECT_EQ(settings(Bytes(whole.begin(), end)), std::nullopt) << end - whole.begin();
    }
  }
}

TEST(DipSwitchReply, IsNotFoundInAnEmptyInput) {
  Place place = {-1, -2};
  EXPECT_NE(parseDipSwitchInfo(nullptr, 0, &place.location, &place.length), 0);
  EXPECT_NE(parseDipSwitchInfo(nullptr, -5, &place.location, &place.length), 0);
  EXPECT_EQ(place, (Place{-1, -2}));
}

TEST(DipSwitchReply, IsFoundInRandomBytesAtTheSamePlaceAsByATextSearch) {
  std::mt19937 random(52);
  int hits = 0;
  for (int round = 0; round < 20000; ++round) {
    Bytes bytes = randomReplyBytes(random);
    if (round % 4 == 0) {
      bytes = bytes + Bytes{0x1b, 0x23, 0x2c, 0x32} + randomReplyBytes(random);
    }
    const auto place = settings(bytes);
    hits += place.has_value() ? 1 : 0;
    ASSERT_EQ(place, settingsByText(bytes)) << "round " << round;
  }
  EXPECT_GT(hits, 2000);
}

}  // namespace
}  // namespace quordalvane::test
