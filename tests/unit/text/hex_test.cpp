#include "text/Hex.h"

#include <gtest/gtest.h>

#include <array>

namespace quordalvane {
namespace {

TEST(HexText, HasTwoLowerCaseDigitsForEachByte) {
  constexpr std::array<std::uint8_t, 3> bytes = {0x00, 0x9f, 0xA0};
  EXPECT_EQ(hexText(bytes), "009fa0");
  EXPECT_EQ(hexText({}), "");
}

TEST(HexText, HasTheSeparatorOnlyBetweenBytes) {
  constexpr std::array<std::uint8_t, 2> bytes = {0x1b, 0x40};
  EXPECT_EQ(hexText(bytes, " "), "1b 40");
  EXPECT_EQ(hexText(std::span(bytes).first(1), " "), "1b");
}

}  // namespace
}  // namespace quordalvane
