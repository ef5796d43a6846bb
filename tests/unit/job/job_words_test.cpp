#include <gtest/gtest.h>

#include "job/StatusText.h"
#include "job/Words.h"

namespace quordalvane {
namespace {

TEST(GroupedCount, HasACommaAfterTheThousands) {
  EXPECT_EQ(grouped(0), "0");
  EXPECT_EQ(grouped(999), "999");
  EXPECT_EQ(grouped(1204), "1,204");
  EXPECT_EQ(grouped(1000000), "1,000,000");
}

TEST(WhyOffline, IsEmptyForAPrinterThatIsOnLine) {
  QuorPrinterStatus_2 status = {};
  status.coverOpen = 1;  // the cover is open, but the printer is on line
  EXPECT_EQ(whyOffline(status), "");
}

}  // namespace
}  // namespace quordalvane
