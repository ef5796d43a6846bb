#include "simulator/drawing/PaperStrips.h"

#include <gtest/gtest.h>

namespace quordalvane::simulator {
namespace {

PaperItem lineOf(const std::u32string& text) {
  Line line;
  line.items.push_back({0, TextRun{text, {}}});
  return line;
}

TEST(PaperStrips, ShowNewlyPrintedRowsAndCuts) {
  PaperStrips paper(widePaperDots);
  const auto first = paper.add({lineOf(U"one")});
  ASSERT_EQ(first.strips.size(), 1U);
  EXPECT_EQ(first.strips[0].row, 0U);
  EXPECT_EQ(first.strips[0].height, lineSpacing);
  const auto second = paper.add({lineOf(U"two"), Cut{false}});
  EXPECT_EQ(second.strips[0].row, lineSpacing);
  ASSERT_EQ(second.cuts.size(), 1U);
  EXPECT_EQ(second.cuts[0].row, 2 * lineSpacing);
  EXPECT_EQ(paper.length(), 2 * lineSpacing);
}

TEST(PaperStrips, ShowEarlierPrintedRowsAgainIfThePaperIsFedBack) {
  PaperStrips over(widePaperDots);
  over.add({lineOf(U"one")});
  const auto changed = over.add({Feed{-30}, lineOf(U"  I")});
  ASSERT_EQ(changed.strips.size(), 1U);
  EXPECT_EQ(changed.strips[0].row, 0U);
  PaperStrips alone(widePaperDots);
  EXPECT_NE(changed.strips[0].png, alone.add({lineOf(U"  I")}).strips[0].png);
}

TEST(PaperStrips, AreDividedIfTheNewPaperIsLong) {
  PaperStrips paper(widePaperDots);
  const auto changed = paper.add({Feed{3000}});
  ASSERT_EQ(changed.strips.size(), 3U);
  EXPECT_EQ(changed.strips[2].row, 2 * PaperStrips::mostRows);
  EXPECT_EQ(changed.strips[2].height, 3000 - 2 * PaperStrips::mostRows);
}

TEST(PaperStrips, AreNotMadeIfNothingWasPrinted) {
  PaperStrips paper(widePaperDots);
  EXPECT_TRUE(paper.add({}).strips.empty());
  EXPECT_TRUE(paper.add({Feed{-100}}).strips.empty());
}

}  // namespace
}  // namespace quordalvane::simulator
