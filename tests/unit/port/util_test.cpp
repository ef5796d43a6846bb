#include "iphone-IOPort/Util.h"

#include <gtest/gtest.h>

#include "iphone-IOPort/Ascii.h"
#include "iphone-IOPort/Microseconds.h"
#include "iphone-IOPort/Subrange.h"
#include "tests/support/Bytes.h"

namespace quordalvane {
namespace {

TEST(UsbModel, HasANameThatEndsInMinusU) {
  for (const char* model : {"KLT20-U", "-U", "XQ-U-U"}) {
    EXPECT_TRUE(Util::isUsbDevice(model)) << model;
  }
  for (const char* model : {"", "U", "-", "KLT20", "KLT20-u", "KLT-U2", "KLT-U "}) {
    EXPECT_FALSE(Util::isUsbDevice(model)) << model;
  }
}

TEST(BluetoothAddress, IsSixPairsOfHexDigitsJoinedByColons) {
  const std::pair<const char*, const char*> rows[] = {
      {"00:11:22:33:44:55", "00:11:22:33:44:55"},
      {"aB:cD:eF:Ab:Cd:Ef", "aB:cD:eF:Ab:Cd:Ef"},
      {"<printer, address 00:11:22:33:44:55>", "00:11:22:33:44:55"},
      {"00:11:22:33:44:5", ""},
      {"00:11:22:33:44:5g", ""},
      {"00-11-22-33-44-55", ""},
      {"001122334455", ""},
      {"0:11:22:33:44:55", ""},
      {"a00:11:22:33:44:55", ""},
      {"00:11:22:33:44:55f", ""},
      {"00:11:22:33:44:556 01:02:03:04:05:06", "01:02:03:04:05:06"},
      {"x 00:11:22:33:44:55 01:02:03:04:05:06", "00:11:22:33:44:55"},
      {"zz00:11:22:33:44:55zz", "00:11:22:33:44:55"},
      {"", ""},
      {":::::", ""}};
  for (const auto& [text, address] : rows) {
    EXPECT_EQ(Util::getMACAddressFromString(text), address) << text;
  }
}

TEST(BluetoothAddress, IsFoundAtTheEndOfALongText) {
  EXPECT_EQ(Util::getMACAddressFromString(std::string(10U << 20U, 'a')), "");
  EXPECT_EQ(Util::getMACAddressFromString(std::string(10U << 20U, ':') + "00:11:22:33:44:55"),
            "00:11:22:33:44:55");
}

TEST(Subrange, IsTheGivenPartOfATextOrOfBytes) {
  const std::string text = "abcdef";
  EXPECT_EQ(subrange(text, {0, 6}), "abcdef");
  EXPECT_EQ(subrange(text, {2, 3}), "cde");
  EXPECT_EQ(subrange(text, {6, 0}), "");
  EXPECT_EQ(subrange(test::bytes("01 02 03"), {1, 2}), test::bytes("02 03"));
}

TEST(Subrange, ThrowsIfPartOfTheRangeIsOutside) {
  const std::string text = "abcdef";
  for (const auto& [location, length] :
       std::initializer_list<std::pair<std::int64_t, std::int64_t>>{{0, 7},
                                                                    {1, 6},
                                                                    {7, 0},
                                                                    {-1, 1},
                                                                    {1, -1},
                                                                    {1, -2},
                                                                    {6, 1},
                                                                    {INT64_MAX, 1},
                                                                    {1, INT64_MAX},
                                                                    {INT64_MAX, INT64_MAX},
                                                                    {INT64_MIN, INT64_MIN},
                                                                    {INT64_MIN, 1}}) {
    EXPECT_THROW(subrange(text, {location, length}), std::out_of_range)
        << location << ", " << length;
  }
  EXPECT_THROW(subrange(std::string(), {1, -2}), std::out_of_range)
      << "a header and an end of one byte";
}

TEST(AsciiText, HasOneCharacterForEachByte) {
  EXPECT_EQ(asciiText(test::bytes("41 00 7f 80 ff")),
            std::string("A\0\x7f\xef\xbf\xbd\xef\xbf\xbd", 9));
  EXPECT_EQ(asciiText(std::string("\xc3\xa4")), "\xef\xbf\xbd\xef\xbf\xbd");
  EXPECT_EQ(asciiText(test::Bytes{}), "");
}

TEST(Microseconds, AreMultipliedInSinglePrecisionAndTruncated) {
  EXPECT_EQ(microseconds(0.05F), 50000);
  EXPECT_EQ(microseconds(0.1F), 100000);
  EXPECT_EQ(microseconds(1.5F), 1500000) << "not parted into seconds";
}

}  // namespace
}  // namespace quordalvane
