#include "render/RasterPage.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "tests/unit/render/Job.h"

namespace quordalvane::render {
namespace {

// One row that is black from `first` up to `end`, in the form for a printer whose head has `head`
// dots.
Bytes printedRow(unsigned pageDots, unsigned head, unsigned first, unsigned end) {
  Job job;
  RasterPage page(pageDots, head, job.output());
  Bytes row(pageDots, 255);
  std::fill(row.begin() + first, row.begin() + end, std::uint8_t{0});
  page.add(row);
  page.end();
  const Bytes bytes = job.all();
  return bytes.empty() ? bytes : Bytes(bytes.begin() + 8, bytes.end());
}

TEST(RasterPage, IsCutOnBothSidesToTheWidthOfThePrintHead) {
  // Paper of 80 mm is 639 dots wide, and the head 576. So the page loses 31 dots at the left and 32
  // at the right.
  EXPECT_EQ(printedRow(639, 576, 31, 607), Bytes(72, 0xff));
  EXPECT_EQ(printedRow(639, 576, 0, 31), Bytes());
  EXPECT_EQ(printedRow(639, 576, 607, 639), Bytes());
}

TEST(RasterPage, IsPrintedUnchangedIfItIsAsWideAsThePrintHead) {
  EXPECT_EQ(printedRow(576, 576, 0, 576), Bytes(72, 0xff));
}

TEST(RasterPage, IsPrintedAtTheLeftIfItIsNarrowerThanThePrintHead) {
  Bytes expected(72);
  std::fill(expected.begin(), expected.begin() + 48, std::uint8_t{0xff});
  EXPECT_EQ(printedRow(384, 576, 0, 384), expected);
}

TEST(RasterPage, SendsAsManyBytesAsItPredicts) {
  for (const std::size_t rows : {1U, 254U, 255U, 256U, 2'000U}) {
    Job job;
    RasterPage page(576, 576, job.output());
    for (std::size_t row = 0; row < rows; ++row) {
      page.add(Bytes(576, 0));
    }
    page.end();
    EXPECT_LE(job.all().size(), RasterPage::mostBytes(rows, 576)) << rows;
    EXPECT_GE(job.all().size() + 8, RasterPage::mostBytes(rows, 576)) << rows;
  }
}

}  // namespace
}  // namespace quordalvane::render
