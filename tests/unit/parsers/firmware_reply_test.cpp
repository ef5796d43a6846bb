#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <random>
#include <string>

#include "parsers/ReplyParsers.h"
#include "tests/unit/parsers/ReplyBytes.h"

namespace quordalvane::test {
namespace {

const Bytes head = {0x1b, 0x23, 0x2a};
const Bytes tail = {0x0a, 0x00};

std::optional<Place> text(const Bytes& bytes) {
  return found(parseFirmwareInfo, bytes);
}

/// The place of the text, as the comment on `parseFirmwareInfo` defines it. This second
/// implementation tries every place and every length.
std::optional<Place> textByTrial(const Bytes& bytes) {
  const std::string all(bytes.begin(), bytes.end());
  for (std::size_t start = 0; start < all.size(); ++start) {
    for (std::size_t length = 1; length <= 64; ++length) {
      const std::string field = all.substr(std::min(start + 3, all.size()), length);
      const bool printable =
          std::all_of(field.begin(), field.end(), [](char c) { return c >= ' ' && c <= '~'; });
      if (printable && all.substr(start, length + 5) == "\x1b#*" + field + '\n' + '\0') {
        return Place{static_cast<std::int32_t>(start) + 3, static_cast<std::int32_t>(length)};
      }
    }
  }
  return std::nullopt;
}

TEST(FirmwareReply, IsFoundWithATextOf1To64Characters) {
  for (std::int32_t length = 1; length <= 64; ++length) {
    const Bytes reply = head + Bytes(static_cast<std::size_t>(length), 'v') + tail;
    EXPECT_EQ(text(reply), (Place{3, length}));
  }
}

TEST(FirmwareReply, IsNotFoundIfItsTextIsEmptyOrLongerThan64Characters) {
  for (const std::size_t length : {0U, 65U, 66U, 128U}) {
    EXPECT_EQ(text(head + Bytes(length, 'v') + tail), std::nullopt) << length;
  }
}

TEST(FirmwareReply, ContainsOnlyPrintableAscii) {
  for (int byte = 0; byte < 256; ++byte) {
    const bool printable = byte >= 0x20 && byte <= 0x7e;
    const Bytes reply = head + Bytes{'a', static_cast<std::uint8_t>(byte), 'b'} + tail;
    EXPECT_EQ(text(reply).has_value(), printable) << byte;
  }
}

TEST(FirmwareReply, IsFoundAfterNoise) {
  const Bytes reply = head + ascii("QD-80 1.4") + tail;
  for (const Bytes& noise : {Bytes{0x00}, Bytes{0x1b}, Bytes{0x1b, 0x23}, Bytes{0x89, 0x01, 0xff},
                             Bytes{0x1b, 0x1b, 0x23}, Bytes(100, 0x0a)}) {
    EXPECT_EQ(text(noise + reply), (Place{static_cast<std::int32_t>(noise.size()) + 3, 9}));
  }
}

TEST(FirmwareReply, IsFoundAfterADamagedReply) {
  const Bytes good = head + ascii("2.0") + tail;
  for (const Bytes& damaged :
       {head, head + tail, head + ascii("1."), head + ascii("1.9") + Bytes{0x0a},
        head + ascii("1.9") + Bytes{0x0a, 0x01}, head + Bytes{0x80} + tail,
        head + Bytes(65, 'x') + tail}) {
    EXPECT_EQ(text(damaged + good), (Place{static_cast<std::int32_t>(damaged.size()) + 3, 3}));
  }
}

TEST(FirmwareReply, IsTheFirstOfTwoReplies) {
  EXPECT_EQ(text(head + ascii("one") + tail + head + ascii("three") + tail), (Place{3, 3}));
}

TEST(FirmwareReply, IsFoundIfOtherBytesFollow) {
  EXPECT_EQ(text(head + ascii("1") + tail + Bytes{0x89, 0x01}), (Place{3, 1}));
}

TEST(FirmwareReply, IsNotFoundIfItIsCutOff) {
  const Bytes reply = head + ascii("QD-80 1.4") + tail;
  for (auto end = reply.begin(); end != reply.end(); ++end) {
    EXPECT_EQ(text(Bytes(reply.begin(), end)), std::nullopt) << end - reply.begin();
  }
}

TEST(FirmwareReply, IsNotFoundInAnEmptyInput) {
  Place place = {-1, -2};
  EXPECT_NE(parseFirmwareInfo(nullptr, 0, &place.location, &place.length), 0);
  EXPECT_NE(parseFirmwareInfo(nullptr, -5, &place.location, &place.length), 0);
  EXPECT_EQ(place, (Place{-1, -2}));
}

TEST(FirmwareReply, IsFoundInRandomBytesAtTheSamePlaceAsByASlowSearch) {
  std::mt19937 random(51);
  int hits = 0;
  for (int round = 0; round < 2000; ++round) {
    Bytes bytes = randomReplyBytes(random);
    if (round % 4 == 0) {
      bytes = bytes + head + Bytes(random() % 67, 'q') + tail + randomReplyBytes(random);
    }
    const auto place = text(bytes);
    hits += place.has_value() ? 1 : 0;
    ASSERT_EQ(place, textByTrial(bytes)) << "round " << round;
  }
  EXPECT_GT(hits, 200);
}

}  // namespace
}  // namespace quordalvane::test
