#include "text/PrintableText.h"

#include <gtest/gtest.h>

namespace quordalvane {
namespace {

using namespace std::string_view_literals;

constexpr std::string_view replacement = "\xEF\xBF\xBD";

std::string printable(std::string_view text) {
  std::string out;
  appendPrintable(out, text);
  return out;
}

std::string json(std::string_view text) {
  std::string out;
  appendJsonString(out, text);
  return out;
}

struct Case {
  std::string_view what;
  std::string_view text;
  std::string_view shown;
};

constexpr Case cases[] = {
    {"nothing", "", ""},
    {"plain text", "XQ-200 [1] ~", "XQ-200 [1] ~"},
    {"valid text of two, three and four bytes", "ä € 𐍈", "ä € 𐍈"},
    {"line feed, carriage return, tab", "a\nb\rc\td", "a\\nb\\rc\\td"},
    {"a zero byte", "a\0b"sv, "a\\u0000b"},
    {"the escape that drives a terminal", "\x1b[2J", "\\u001b[2J"},
    {"the last control character below blank", "\x1f", "\\u001f"},
    {"DEL", "\x7f", "\\u007f"},
    {"the eight-bit escape", "\xC2\x9B", "\\u009b"},
    {"the first and the last eight-bit control", "\xC2\x80\xC2\x9F", "\\u0080\\u009f"},
    {"the character after them", "\xC2\xA0", "\xC2\xA0"},
    {"a continuation byte alone", "\x80", replacement},
    {"a byte that no text holds", "\xFF", replacement},
    {"a character cut short at the end", "a\xE2\x82", "a\xEF\xBF\xBD\xEF\xBF\xBD"},
    {"a character cut short by another", "\xE2(", "\xEF\xBF\xBD("},
    {"an overlong slash", "\xC0\xAF", "\xEF\xBF\xBD\xEF\xBF\xBD"},
    {"an overlong form of three bytes", "\xE0\x9F\xBF", "\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD"},
    {"the character before the surrogates", "\xED\x9F\xBF", "\xED\x9F\xBF"},
    {"the first surrogate", "\xED\xA0\x80", "\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD"},
    {"the last surrogate", "\xED\xBF\xBF", "\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD"},
    {"the character after the surrogates", "\xEE\x80\x80", "\xEE\x80\x80"},
    {"the last code point", "\xF4\x8F\xBF\xBF", "\xF4\x8F\xBF\xBF"},
    {"beyond the last code point", "\xF4\x90\x80\x80",
     "\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD"},
};

TEST(PrintableText, EscapesControlCharactersAndReplacesInvalidBytes) {
  for (const Case& c : cases) {
    EXPECT_EQ(printable(c.text), c.shown) << c.what;
    EXPECT_EQ(json(c.text), '"' + std::string(c.shown) + '"') << c.what;
  }
}

TEST(PrintableText, IsPrintableExactlyIfNoCharacterNeedsAnEscape) {
  for (const Case& c : cases) {
    EXPECT_EQ(isPrintable(c.text), c.text == c.shown) << c.what;
    EXPECT_TRUE(isPrintable(c.shown)) << c.what;
  }
}

TEST(PrintableText, LeavesQuotationMarksAndBackslashesUnchanged) {
  EXPECT_EQ(printable(R"(a"b\c)"), R"(a"b\c)");
}

TEST(PrintableText, EscapesQuotationMarksAndBackslashesInJson) {
  EXPECT_EQ(json(R"(a"b\c)"), R"("a\"b\\c")");
}

TEST(PrintableText, NeverContainsAControlCharacterForAnyPairOfBytes) {
  for (unsigned pair = 0; pair < 0x10000; ++pair) {
    const std::string text{static_cast<char>(pair >> 8U), static_cast<char>(pair & 0xFFU)};
    for (const std::string& shown : {printable(text), json(text)}) {
      ASSERT_TRUE(isPrintable(shown)) << pair;
      for (const char byte : shown) {
        ASSERT_TRUE(static_cast<unsigned char>(byte) >= 0x20 && byte != 0x7F) << pair;
      }
    }
  }
}

TEST(PrintableText, AppendsToTheOutput) {
  std::string out = "x";
  appendPrintable(out, "y");
  appendJsonString(out, "z");
  EXPECT_EQ(out, "xy\"z\"");
}

}  // namespace
}  // namespace quordalvane
