#include "render/TextLines.h"

#include <gtest/gtest.h>

#include <vector>

#include "render/RenderError.h"

namespace quordalvane::render {
namespace {

using Lines = std::vector<std::string>;

Lines linesOf(const std::string& text, std::size_t pieceSize = 1 << 20) {
  Lines lines;
  TextLines splitter([&](const std::string& line) { lines.push_back(line); });
  for (std::size_t at = 0; at < text.size(); at += pieceSize) {
    splitter.add(std::string_view(text).substr(at, pieceSize));
  }
  splitter.end();
  return lines;
}

std::string refusalOf(const std::string& text) {
  try {
    linesOf(text);
  } catch (const RenderError& error) {
    return error.what();
  }
  return "";
}

TEST(TextLines, EndAtLineFeedOrCrLfOrFormFeed) {
  EXPECT_EQ(linesOf("one\ntwo\r\n\nfour\ffive"), (Lines{"one", "two", "", "four", "five"}));
}

TEST(TextLines, AreTheSameIfTheTextArrivesInPieces) {
  const std::string text = "Café\r\nΕυχαριστώ\t€\n買い上げ\n𝄞";
  for (std::size_t size = 1; size < text.size(); ++size) {
    EXPECT_EQ(linesOf(text, size), linesOf(text)) << size;
  }
}

TEST(TextLines, ReplaceATabBySpacesUpToAMultipleOfEightColumns) {
  EXPECT_EQ(linesOf("a\tb\té12345678\tc"), (Lines{"a       b       é12345678       c"}));
}

TEST(TextLines, OmitAByteOrderMarkAtTheBeginning) {
  EXPECT_EQ(linesOf("\ufeffone"), (Lines{"one"}));
}

TEST(TextLines, AreRefusedIfTheyAreNotUtf8) {
  EXPECT_EQ(refusalOf("Caf\xe9 au lait"), "invalid UTF-8 at byte 3 of the text");
  EXPECT_EQ(refusalOf("Caf\xc3"), "invalid UTF-8 at byte 3 of the text");
}

TEST(TextLines, AreRefusedIfTheyContainAControlCharacter) {
  EXPECT_NE(refusalOf("one\x1b@").find("a control character at byte 3"), std::string::npos);
  EXPECT_NE(refusalOf(std::string("one\0", 4)).find("at byte 3"), std::string::npos);
  EXPECT_NE(refusalOf("one\u0085").find("at byte 3"), std::string::npos);
  EXPECT_NE(refusalOf("one\rtwo").find("at byte 3"), std::string::npos);
}

TEST(TextLines, AreBrokenAtASpaceIfTheyAreTooLong) {
  std::string text;
  for (int i = 0; i < 2000; ++i) {
    text += "word ";
  }
  const Lines lines = linesOf(text, 7);
  ASSERT_GE(lines.size(), 3U);
  std::string joined;
  for (const std::string& line : lines) {
    EXPECT_LE(line.size(), longestLine);
    joined += line + " ";
  }
  EXPECT_EQ(joined.substr(0, text.size()), text);
}

TEST(TextLines, AreNotBrokenBeforeACombiningCharacter) {
  const std::string letters(longestLine, 'x');
  const Lines lines = linesOf(letters + "\u0301y");
  EXPECT_EQ(lines, (Lines{letters + "\u0301", "y"}));
}

TEST(TextLines, HaveABoundedLengthEvenIfTheyContainOnlyCombiningCharacters) {
  std::string text = "e";
  for (std::size_t i = 0; i < 2 * longestLine; ++i) {
    text += "\u0301";
  }
  for (const std::string& line : linesOf(text)) {
    EXPECT_LE(line.size(), 2 * longestLine + 4);
  }
}

}  // namespace
}  // namespace quordalvane::render
