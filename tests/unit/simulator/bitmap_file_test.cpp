#include "simulator/BitmapFile.h"

#include <gtest/gtest.h>

#include "tests/unit/simulator/Print.h"

namespace quordalvane::simulator {
namespace {

void add(Bytes& bytes, std::uint32_t value, unsigned count) {
  for (unsigned i = 0; i < count; ++i) {
    bytes.push_back(static_cast<std::uint8_t>(value >> 8U * i));
  }
}

/// A bitmap file with `depth` bits for each dot. Unless `depth` is 24, the file has a palette from
/// black to white.
Bytes file(std::uint32_t width, std::int32_t height, unsigned depth, const Bytes& dots) {
  const std::uint32_t colours = depth == 24 ? 0 : 1U << depth;
  Bytes bytes = ascii("BM");
  add(bytes, static_cast<std::uint32_t>(54 + 4 * colours + dots.size()), 4);
  add(bytes, 0, 4);
  add(bytes, 54 + 4 * colours, 4);
  add(bytes, 40, 4);
  add(bytes, width, 4);
  add(bytes, static_cast<std::uint32_t>(height), 4);
  add(bytes, 1, 2);
  add(bytes, depth, 2);
  bytes.resize(54);
  for (std::uint32_t i = 0; i < colours; ++i) {
    const std::uint32_t shade = i * 255 / (colours - 1);
    add(bytes, shade | shade << 8U | shade << 16U, 4);
  }
  return bytes + dots;
}

std::string rowOf(const Bitmap& picture, unsigned y) {
  std::string row;
  for (unsigned x = 0; x < picture.width; ++x) {
    row += picture.black(x, y) ? '#' : '.';
  }
  return row;
}

TEST(BitmapFile, IsReadInEachColourDepthAndRowOrder) {
  const std::pair<unsigned, Bytes> rows[] = {
      {1, hex("60000000 80000000")},
      {4, hex("0ff00000 f0000000")},
      {8, hex("00ffff00 ff007f00")},
      {24, hex("000000ffffffffffff000000 ffffff000000000000000000")},
  };
  for (const auto& [depth, dots] : rows) {
    const Bitmap fromFoot = fromBitmapFile(file(3, 2, depth, dots));
    ASSERT_EQ(fromFoot.height, 2U) << depth;
    EXPECT_EQ(rowOf(fromFoot, 0), ".##") << depth;
    EXPECT_EQ(rowOf(fromFoot, 1), "#..") << depth;
    EXPECT_EQ(rowOf(fromBitmapFile(file(3, -2, depth, dots)), 0), "#..") << depth;
  }
}

TEST(BitmapFile, GivesNoPictureIfItIsCutOffOrInvalid) {
  const Bytes right = file(3, 2, 1, hex("60000000 a0000000"));
  for (std::size_t length = 0; length < right.size(); ++length) {
    EXPECT_EQ(fromBitmapFile(ByteView(right).first(length)).width, 0U) << length;
  }
  for (const auto& [at, value] : {std::pair{0, 'C'},
                                  {10, '\xff'},
                                  {18, '\0'},
                                  {22, '\0'},
                                  {25, '\x80'},
                                  {28, '\2'},
                                  {30, '\1'}}) {
    Bytes wrong = right;
    wrong[static_cast<std::size_t>(at)] = static_cast<std::uint8_t>(value);
    EXPECT_EQ(fromBitmapFile(wrong).width, 0U) << at;
  }
}

TEST(BitmapFile, IsWhiteWhereAColourOfThePaletteIsMissing) {
  Bytes wrong = file(3, 1, 8, hex("00010200"));
  wrong[14] = 0xff;
  wrong[15] = 0x03;
  EXPECT_EQ(rowOf(fromBitmapFile(wrong), 0), "...");
}

TEST(BitmapFile, IsStoredUnderItsKeyAndPrinted) {
  const Bytes bitmap = file(8, 1, 1, hex("00000000"));
  const std::pair<const char*, const char*> memories[] = {{"43", "45"}, {"53", "55"}};
  for (const auto& [store, show] : memories) {
    const Print print(hex("1d44 30") + hex(store) + hex("30 4142 30 31") + bitmap +
                      hex("1d284c 0600 30") + hex(show) + hex("4142 01 01"));
    EXPECT_EQ(print.text(), "[image 8 x 1 dots]\n") << store;
    EXPECT_EQ(print.row(0, 0, 10), "########..") << store;
  }
}

}  // namespace
}  // namespace quordalvane::simulator
