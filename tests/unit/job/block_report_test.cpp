#include "job/BlockReport.h"

#include <gtest/gtest.h>

#include <vector>

namespace quordalvane {
namespace {

using Bytes = std::vector<std::uint8_t>;

TEST(BlockReport, IsFoundInPiecesOfAnySize) {
  const Bytes bytes = {0x12, 0x1b, 0x1d, 0x03, 0x01, 0x00, 0x00, 0x01, 0x00, 0x12};
  for (std::size_t cut = 0; cut <= bytes.size(); ++cut) {
    BlockReport report;
    report.feed(std::span(bytes).first(cut));
    report.feed(std::span(bytes).subspan(cut));
    EXPECT_EQ(report.lastCount(), 1) << cut;
  }
}

TEST(BlockReport, IgnoresATruncatedReport) {
  BlockReport report;
  report.feed(Bytes{0x1b, 0x1d, 0x03, 0x01, 0x00, 0x00, 0x01});
  EXPECT_FALSE(report.lastCount());
}

TEST(BlockReport, IgnoresAReportWithAWrongByte) {
  for (std::size_t place : {1U, 2U, 3U, 4U, 5U, 7U}) {
    Bytes bytes = {0x1b, 0x1d, 0x03, 0x01, 0x00, 0x00, 0x01, 0x00};
    bytes[place] ^= 0x40;
    BlockReport report;
    report.feed(bytes);
    EXPECT_FALSE(report.lastCount()) << place;
  }
}

TEST(BlockReport, ReturnsTheLastOfSeveralCounts) {
  BlockReport report;
  report.feed(Bytes{0x1b, 0x1b, 0x1d, 0x03, 0x01, 0x00, 0x00, 0x01, 0x00});
  EXPECT_EQ(report.lastCount(), 1);
  report.feed(Bytes{0x1b, 0x1d, 0x03, 0x01, 0x00, 0x00, 0x1b, 0x00});
  EXPECT_EQ(report.lastCount(), 0x1b);
  report.clear();
  EXPECT_FALSE(report.lastCount());
}

}  // namespace
}  // namespace quordalvane
