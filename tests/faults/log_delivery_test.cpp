// The thread that delivers log records runs out of memory: in the first run at its first allocation
// after a write, in the next run at its second, and so on.

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <cstdlib>
#include <memory>
#include <optional>
#include <string>
#include <utility>

#include "logging/LogDelivery.h"
#include "tests/faults/AllocationFault.h"

namespace quordalvane::test {
namespace {

constexpr std::chrono::minutes patience{1};

/// Counts the records that it receives and the records that are reported missing. Its first write
/// waits for `release`. After this write, the writer's k-th allocation fails, alone or with all
/// later allocations. The fault ends at the next write or with `memoryIsBack`. The sink itself
/// allocates nothing.
class SpoilingSink : public LogSink {
 public:
  explicit SpoilingSink(std::uint64_t k, bool fromThereOn = false)
      : k_(k), fromThereOn_(fromThereOn) {}

  void write(std::span<const LogRecord> records) override {
    if (fault_) {
      struck = fault_->hasStruck();
      fault_.reset();
    }
    for (const LogRecord& record : records) {
      if (record.message.starts_with("log records dropped here, ")) {
        ++words;
        told += std::strtoull(record.message.c_str() + record.message.rfind(' '), nullptr, 10);
      } else {
        ++given;
      }
    }
    if (!std::exchange(begun_, true)) {
      entered_ = true;
      entered_.notify_all();
      released_.wait(false);
      fault_.emplace(Allocation::Any, k_, fromThereOn_);
    }
  }

  void waitUntilItHangs() const { entered_.wait(false); }
  void release() {
    released_ = true;
    released_.notify_all();
  }

  /// Call this only while the writer has nothing to do.
  void memoryIsBack() { fault_.reset(); }

  // Only the writer's thread may use these members while the writer has records.
  std::uint64_t given = 0;
  std::uint64_t told = 0;
  std::uint64_t words = 0;  // how often missing records were reported
  bool struck = false;

 private:
  const std::uint64_t k_;
  const bool fromThereOn_;
  bool begun_ = false;
  std::optional<AllocationFault> fault_;  // only the writer's thread uses it
  std::atomic<bool> entered_ = false;
  std::atomic<bool> released_ = false;
};

void log(LogDelivery& delivery, const char* message) {
  LogRecord record;
  record.message = message;
  delivery.handOver(std::move(record));
}

TEST(LogDeliveryWithoutMemory, CountsTheRecordsThatItLosesAndDeliversLaterRecords) {
  bool struck = true;
  std::uint64_t losses = 0;
  for (std::uint64_t k = 1; struck; ++k) {
    LogDelivery delivery;
    const auto sink = std::make_shared<SpoilingSink>(k);
    delivery.setQueueCapacity(1);
    delivery.addSink(sink);
    log(delivery, "taken");
    sink->waitUntilItHangs();
    delivery.setQueueCapacity(2);  // the writer must allocate memory for a longer queue
    for (const char* message : {"a", "b", "dropped"}) {
      log(delivery, message);
    }
    sink->release();
    ASSERT_TRUE(delivery.flush(patience)) << k;
    log(delivery, "afterwards");
    ASSERT_TRUE(delivery.flush(patience)) << k;
    EXPECT_EQ(sink->given + sink->told, 5U) << k;
    EXPECT_EQ(delivery.counts().dropped, sink->told) << k;
    struck = sink->struck;
    losses += sink->told > 1 ? 1U : 0U;
  }
  EXPECT_GT(losses, 0U) << "no allocation that failed cost a record";
}

TEST(LogDeliveryWithoutMemory, ReportsAllLossesInOneRecordWhenMemoryIsFreeAgain) {
  for (const std::uint64_t losses : {1U, 2U}) {
    LogDelivery delivery;
    const auto sink = std::make_shared<SpoilingSink>(1, true);
    delivery.addSink(sink);
    log(delivery, "taken");
    sink->waitUntilItHangs();
    sink->release();
    ASSERT_TRUE(delivery.flush(patience));
    for (std::uint64_t i = 0; i < losses; ++i) {
      log(delivery, "lost");
      ASSERT_TRUE(delivery.flush(patience));
    }
    sink->memoryIsBack();
    log(delivery, "afterwards");
    ASSERT_TRUE(delivery.flush(patience));
    EXPECT_EQ(sink->given, 2U);
    EXPECT_EQ(sink->told, losses);
    EXPECT_EQ(sink->words, 1U);
  }
}

}  // namespace
}  // namespace quordalvane::test
