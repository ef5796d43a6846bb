#include "render/Dither.h"

#include <gtest/gtest.h>

#include <bit>
#include <numeric>

#include "tests/unit/render/Job.h"

namespace quordalvane::render {
namespace {

constexpr unsigned width = 64;
constexpr int rows = 64;

// Returns how many dots are black in a square of this grey, 64 dots wide and high.
int blackDots(DitherKind kind, std::uint8_t grey) {
  Dither dither(kind, width);
  const Bytes row(width, grey);
  int count = 0;
  for (int y = 0; y < rows; ++y) {
    for (const std::uint8_t byte : dither.dots(row)) {
      count += std::popcount(byte);
    }
  }
  return count;
}

class EveryDither : public testing::TestWithParam<DitherKind> {};

TEST_P(EveryDither, DrawsWhiteAsNoDotsAndBlackAsAllDots) {
  EXPECT_EQ(blackDots(GetParam(), 255), 0);
  EXPECT_EQ(blackDots(GetParam(), 0), rows * static_cast<int>(width));
}

TEST_P(EveryDither, DrawsGreyAsTheMatchingShareOfBlackDots) {
  for (const int grey : {32, 64, 96, 128, 160, 192, 224}) {
    const double share =
        1.0 * blackDots(GetParam(), static_cast<std::uint8_t>(grey)) / (rows * width);
    EXPECT_NEAR(share, 1 - grey / 255.0, 0.03) << grey;
  }
}

TEST_P(EveryDither, SpreadsTheDotsOfAMiddleGreyEvenly) {
  Dither dither(GetParam(), width);
  const Bytes row(width, 128);
  for (int y = 0; y < rows; ++y) {
    for (const std::uint8_t byte : dither.dots(row)) {
      EXPECT_GE(std::popcount(byte), 2) << y;
      EXPECT_LE(std::popcount(byte), 6) << y;
    }
  }
}

TEST_P(EveryDither, TreatsTheMissingEndOfARowAsWhite) {
  Dither dither(GetParam(), 16);
  const ByteView dots = dither.dots(Bytes(3, 0));
  EXPECT_EQ(Bytes(dots.begin(), dots.end()), (Bytes{0xe0, 0x00}));
}

INSTANTIATE_TEST_SUITE_P(Kinds, EveryDither,
                         testing::Values(DitherKind::FloydSteinberg, DitherKind::Ordered));

}  // namespace
}  // namespace quordalvane::render
