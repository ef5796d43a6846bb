#include "discovery/FoundDevice.h"

#include <gtest/gtest.h>

#include "text/PrintableText.h"

namespace quordalvane {
namespace {

TEST(ShownText, IsPrintableForAnyTextOfADevice) {
  EXPECT_EQ(shownText("XQ700"), "XQ700");
  for (const std::string& text : {std::string("\x1b[2J"), std::string("\xff\xfe"),
                                  std::string("a\0b", 3), std::string("\n")}) {
    EXPECT_TRUE(isPrintable(shownText(text))) << text;
  }
}

TEST(ShownText, IsCutAfterAWholeCharacter) {
  std::string text;
  for (int i = 0; i < 1'000; ++i) {
    text += "\u20ac";  // three bytes
  }
  EXPECT_LE(shownText(text).size(), 103U);
  EXPECT_TRUE(isPrintable(shownText(text)));
  EXPECT_TRUE(shownText("x" + text).ends_with("\u20ac..."));
  EXPECT_EQ(shownText(std::string(100, 'x')), std::string(100, 'x'));
  EXPECT_EQ(shownText(std::string(101, 'x')), std::string(100, 'x') + "...");
}

}  // namespace
}  // namespace quordalvane
