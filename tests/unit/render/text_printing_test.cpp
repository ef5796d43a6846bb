#include "render/TextPrinting.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "render/RenderError.h"
#include "tests/unit/render/Job.h"

namespace quordalvane::render {
namespace {

Bytes printed(const std::string& text, CodePage page = {}, unsigned width = 384) {
  Job job;
  TextPrinting printing(width, std::move(page), job.output());
  printing.add(text);
  printing.end();
  return job.all();
}

Bytes operator+(Bytes left, const Bytes& right) {
  left.insert(left.end(), right.begin(), right.end());
  return left;
}

const Bytes selectPage16 = {0x1c, 0x2e, 0x1b, 0x74, 16};

bool isDrawn(const Bytes& job) {
  const Bytes raster = {0x1d, 0x76, 0x30, 0};
  return std::search(job.begin(), job.end(), raster.begin(), raster.end()) != job.end();
}

TEST(PrintedText, IsSentAsCharactersIfItIsAscii) {
  EXPECT_EQ(printed("Total  12.00\n\nbye"), ascii("Total  12.00\n\nbye\n"));
}

TEST(PrintedText, IsWrappedAtASpaceOrAtTheWidthOfThePaper) {
  // 384 dots are 32 columns.
  EXPECT_EQ(printed("1234567890 1234567890 12345678901 rest\n"),
            ascii("1234567890 1234567890\n12345678901 rest\n"));
  EXPECT_EQ(printed(std::string(33, 'x')), ascii(std::string(32, 'x') + "\nx\n"));
  EXPECT_EQ(printed(std::string(32, 'x') + " y"), ascii(std::string(32, 'x') + "\ny\n"));
}

TEST(PrintedText, IsDrawnAsAnImageIfTheCodePageLacksACharacter) {
  EXPECT_TRUE(isDrawn(printed("3 €")));
  EXPECT_FALSE(isDrawn(printed("3 €", CodePage("16"))));
  EXPECT_TRUE(isDrawn(printed("Спасибо", CodePage("16"))));
}

TEST(PrintedText, IsDrawnAsAnImageIfItRunsFromRightToLeft) {
  EXPECT_TRUE(isDrawn(printed("שלום", CodePage("15:862"))));
  EXPECT_TRUE(isDrawn(printed("abc سلام", CodePage("50:1256"))));
  EXPECT_FALSE(isDrawn(printed("3 ₪", CodePage("49:1255"))));
}

TEST(PrintedText, IsEncodedInItsCodePageWhichIsSelectedOnlyOnce) {
  EXPECT_EQ(printed("3 €\ncafé\n", CodePage("16")), selectPage16 + ascii("3 \x80\ncaf\xe9\n"));
}

TEST(PrintedText, CombinesALetterWithItsAccent) {
  EXPECT_EQ(printed("cafe\u0301", CodePage("16")), selectPage16 + ascii("caf\xe9\n"));
}

TEST(PrintedText, IsTheSameIfTheTextArrivesByteByByte) {
  const std::string text = "a\né\nb\n";
  Job job;
  TextPrinting printing(384, CodePage(), job.output());
  for (const char byte : text) {
    printing.add({&byte, 1});
  }
  printing.end();
  EXPECT_EQ(job.all(), printed(text));
}

TEST(PrintedText, HasAnEmptyLineBetweenTwoLinesPrintedAsPictures) {
  const Bytes once = printed("é\né\n");
  const Bytes apart = printed("é\n\né\n");
  EXPECT_GT(apart.size(), once.size());
}

TEST(PrintedText, ReportsTheCharactersWithoutAGlyph) {
  Job job;
  TextPrinting printing(384, CodePage(), job.output());
  printing.add("\U0010fffd and é");  // a private-use character: no font has it
  printing.end();
  EXPECT_EQ(printing.missing(), std::set<char32_t>{0x10fffd});
}

TEST(PrintedText, CanHaveADrawnLineOfMoreThan255Rows) {
  std::string text;
  for (int i = 0; i < 400; ++i) {
    text += "été ";
  }
  const Bytes job = printed(text);
  EXPECT_TRUE(isDrawn(job));
  EXPECT_GT(job.size(), 255U * 48);
}

TEST(CodePage, IsGivenByANumberOrByANumberAndAName) {
  EXPECT_EQ(CodePage("16").number(), 16);
  EXPECT_EQ(CodePage("6:1251").encoded("Да"), (Bytes{0xc4, 0xe0}));
  EXPECT_EQ(CodePage("0").encoded("é"), (Bytes{0x82}));
}

TEST(CodePage, TheErrorOfAnUnknownPageNamesTheKnownPages) {
  for (const std::string text :
       {"", "x", "256", "-1", "200", "16:", "16:nonsense", "16:utf-8", "16 "}) {
    try {
      CodePage page(text);
      ADD_FAILURE() << text;
    } catch (const RenderError& error) {
      EXPECT_NE(std::string(error.what()).find("16:1252"), std::string::npos) << text;
    }
  }
}

TEST(CodePage, DoesNotReplaceAMissingCharacterByASimilarCharacter) {
  EXPECT_EQ(CodePage("0").encoded("€"), std::nullopt);
}

}  // namespace
}  // namespace quordalvane::render
