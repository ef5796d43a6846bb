#include "logging/RecordBatch.h"

#include <gtest/gtest.h>

#include "tests/unit/logging/LogFixtures.h"

namespace quordalvane {
namespace {

using test::recordOf;

TEST(RecordBatch, ReusesTheMemoryOfAClearedRecord) {
  RecordBatch batch;
  LogRecord first = recordOf(std::string(100, 'a'));
  const char* const memory = first.message.data();
  batch.add(first);
  EXPECT_EQ(batch.records().front().message.data(), memory);
  batch.clear();
  EXPECT_TRUE(batch.empty());
  LogRecord second = recordOf("b");
  batch.add(second);
  ASSERT_EQ(batch.size(), 1U);
  EXPECT_EQ(batch.records().front().message, "b");
  EXPECT_EQ(second.message.data(), memory);
}

TEST(RecordBatch, FreesTheMemoryOfALongMessage) {
  RecordBatch batch;
  LogRecord dump = recordOf(std::string(100'000, 'a'));
  batch.add(dump);
  batch.clear();
  LogRecord next = recordOf("b");
  batch.add(next);
  EXPECT_LT(next.message.capacity(), 1000U);
}

TEST(RecordBatch, GrowsAfterItWasCleared) {
  RecordBatch batch;
  for (int round = 0; round < 2; ++round) {
    for (int i = 0; i < 5 + round; ++i) {
      LogRecord record = recordOf(std::to_string(i));
      batch.add(record);
    }
    ASSERT_EQ(batch.size(), 5U + static_cast<std::size_t>(round));
    EXPECT_EQ(batch.records().front().message, "0");
    EXPECT_EQ(batch.records().back().message, std::to_string(4 + round));
    batch.clear();
  }
}

}  // namespace
}  // namespace quordalvane
