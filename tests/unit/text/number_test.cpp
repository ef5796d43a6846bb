#include "text/Number.h"

#include <gtest/gtest.h>

#include <cstdint>

namespace quordalvane {
namespace {

TEST(Number, IsReadOnlyIfTheTextContainsNothingElse) {
  EXPECT_EQ(numberIn<std::uint16_t>("9100"), 9100);
  EXPECT_EQ(numberIn<int>("-7"), -7);
  EXPECT_EQ(numberIn<unsigned>("fF", 16), 255U);
  for (const char* const wrong : {"", " 1", "1 ", "+1", "1x", "x", "0x1", "1.0"}) {
    EXPECT_EQ(numberIn<unsigned>(wrong), std::nullopt) << wrong;
  }
}

TEST(Number, MustFitIntoItsType) {
  EXPECT_EQ(numberIn<std::uint8_t>("255"), 255);
  EXPECT_EQ(numberIn<std::uint8_t>("256"), std::nullopt);
  EXPECT_EQ(numberIn<unsigned>("-1"), std::nullopt);
}

}  // namespace
}  // namespace quordalvane
