#include "render/TestPage.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "tests/unit/render/Job.h"

namespace quordalvane::render {
namespace {

// The numbers of all standard code pages. Most printers use these numbers for the same pages.
constexpr std::uint8_t numbers[] = {0,  2,  3,  4,  5,  13, 14, 16, 17, 18, 19, 33,
                                    34, 35, 38, 39, 40, 44, 45, 46, 47, 48, 51};

Job testPage(const std::string& page, unsigned width = 384) {
  Job job;
  printTestPage(CodePage(page), width, job.output());
  return job;
}

bool isDrawn(const Bytes& piece) {
  return piece.size() > 4 && piece[0] == 0x1d && piece[1] == 0x76;
}

TEST(CodePageTestPage, ContainsEveryCharacterOfEachStandardCodePageAsText) {
  for (const std::uint8_t number : numbers) {
    const CodePage page{std::to_string(number)};
    const Bytes job = testPage(std::to_string(number)).all();
    for (unsigned first = 0x80; first < 0x100; first += 16) {
      Bytes row;
      for (unsigned byte = first; byte < first + 16; ++byte) {
        const bool isThere = !page.character(static_cast<std::uint8_t>(byte)).empty();
        row.push_back(isThere ? static_cast<std::uint8_t>(byte) : ' ');
      }
      EXPECT_NE(std::search(job.begin(), job.end(), row.begin(), row.end()), job.end())
          << unsigned{number} << ", " << first;
    }
  }
}

TEST(CodePageTestPage, DrawsEachLineOfTextAgainAsAnImage) {
  const Job job = testPage("16");
  EXPECT_EQ(std::ranges::count_if(job.pieces, isDrawn), 8);
  const auto drawn = std::ranges::find_if(job.pieces, isDrawn);
  ASSERT_GE(drawn - job.pieces.begin(), 2);
  EXPECT_EQ(*(drawn - 1), Bytes{'\n'});
  EXPECT_EQ((drawn - 2)->size(), 4U + 16);
  EXPECT_EQ((*(drawn - 2))[4], 0x80);  // the byte of the euro sign
}

TEST(CodePageTestPage, NamesItsCodePageAndFitsTheNarrowestPaper) {
  const Job job = testPage("6:1251");
  const Bytes title = ascii("Code page 6");
  EXPECT_TRUE(std::ranges::find(job.pieces, title) != job.pieces.end());
  for (const Bytes& piece : job.pieces) {
    EXPECT_TRUE(isDrawn(piece) || piece.size() <= 32);
  }
}

}  // namespace
}  // namespace quordalvane::render
