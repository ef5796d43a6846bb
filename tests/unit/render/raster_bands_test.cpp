#include "render/RasterBands.h"

#include <gtest/gtest.h>

#include "tests/unit/render/Job.h"

namespace quordalvane::render {
namespace {

const Bytes black(2, 0xff);
const Bytes white(2, 0x00);

void add(RasterBands& bands, const Bytes& row, int times = 1) {
  for (int i = 0; i < times; ++i) {
    bands.add(row);
  }
}

Bytes head(std::uint8_t rows) {
  return {0x1d, 0x76, 0x30, 0, 2, 0, rows, 0};
}

Bytes band(std::uint8_t rows, const std::vector<Bytes>& content) {
  Bytes bytes = head(rows);
  for (const Bytes& row : content) {
    bytes.insert(bytes.end(), row.begin(), row.end());
  }
  return bytes;
}

TEST(RasterBands, OmitWhiteRowsAtTheTopAndTheBottomOfAPage) {
  Job job;
  RasterBands bands(16, job.output());
  add(bands, white, 3);
  add(bands, black);
  add(bands, white, 2);
  add(bands, black);
  add(bands, white, 1000);
  bands.end();
  EXPECT_EQ(job.pieces, std::vector<Bytes>{band(4, {black, white, white, black})});
}

TEST(RasterBands, HaveAtMost255Rows) {
  Job job;
  RasterBands bands(16, job.output());
  add(bands, black, 511);
  bands.end();
  ASSERT_EQ(job.pieces.size(), 3U);
  EXPECT_EQ(job.pieces[0].size(), 8U + 2 * 255);
  EXPECT_EQ(job.pieces[1][6], 255);
  EXPECT_EQ(job.pieces[2], band(1, {black}));
}

TEST(RasterBands, SendNoBytesForAWhitePage) {
  Job job;
  RasterBands bands(16, job.output());
  add(bands, white, 600);
  bands.end();
  EXPECT_TRUE(job.pieces.empty());
}

TEST(RasterBands, KeepTheWhiteRowsBetweenTwoFlushes) {
  Job job;
  RasterBands bands(16, job.output(), RasterBands::Top::KeepWhite);
  add(bands, white);
  add(bands, black);
  add(bands, white);
  bands.flush();
  EXPECT_EQ(job.all(), band(3, {white, black, white}));
}

}  // namespace
}  // namespace quordalvane::render
