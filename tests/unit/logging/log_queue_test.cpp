#include "logging/LogQueue.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>
#include <stdexcept>

#include "tests/support/SleepingThread.h"
#include "tests/unit/logging/LogFixtures.h"

namespace quordalvane {
namespace {

using namespace std::chrono_literals;
using test::recordOf;
using testing::ElementsAre;

class LogQueueTest : public testing::Test {
 protected:
  void push(std::string message) { queue_.push(recordOf(std::move(message))); }

  /// Takes the queued records; there must be at least one.
  LogQueue::Batch take() {
    LogQueue::Batch batch;
    queue_.take(batch);
    return batch;
  }

  static std::vector<std::string> messages(const LogQueue::Batch& batch) {
    std::vector<std::string> messages;
    for (const LogRecord& record : batch.records.records()) {
      messages.push_back(record.message);
    }
    return messages;
  }

  LogQueue queue_;
};

TEST_F(LogQueueTest, DiscardsRecordsUntilItIsOpened) {
  push("lost");
  EXPECT_EQ(queue_.counts().handedOver, 1U);
  EXPECT_EQ(queue_.counts().dropped, 0U);
  EXPECT_TRUE(queue_.waitUntilFinished(0ms));
  queue_.open();
  push("kept");
  EXPECT_THAT(messages(take()), ElementsAre("kept"));
}

TEST_F(LogQueueTest, KeepsItsRecordsIfItIsOpenedAgain) {
  queue_.open();
  push("a");
  queue_.open();
  push("b");
  EXPECT_THAT(messages(take()), ElementsAre("a", "b"));
}

TEST_F(LogQueueTest, ReturnsAllRecordsInOrder) {
  queue_.open();
  push("a");
  push("b");
  EXPECT_THAT(messages(take()), ElementsAre("a", "b"));
  push("c");
  EXPECT_THAT(messages(take()), ElementsAre("c"));
}

TEST_F(LogQueueTest, DropsRecordsWhileFullAndCountsEachDrop) {
  queue_.setCapacity(2);
  queue_.open();
  for (const char* message : {"a", "b", "c", "d", "e"}) {
    push(message);
  }
  const LogQueue::Batch batch = take();
  EXPECT_THAT(messages(batch), ElementsAre("a", "b"));
  EXPECT_EQ(batch.dropped, 3U);
  EXPECT_EQ(queue_.counts().handedOver, 5U);
  EXPECT_EQ(queue_.counts().dropped, 3U);
}

TEST_F(LogQueueTest, RecordsTheTimeOfTheFirstDrop) {
  queue_.setCapacity(1);
  queue_.open();
  for (const auto second : {1s, 2s, 3s}) {
    LogRecord record = recordOf("");
    record.time += second;
    queue_.push(std::move(record));
  }
  EXPECT_EQ(take().firstDropTime.time_since_epoch(), 2s);
}

TEST_F(LogQueueTest, CountsADroppedRecordOnlyInTheNextBatch) {
  queue_.setCapacity(1);
  queue_.open();
  push("a");
  push("dropped");
  EXPECT_EQ(take().dropped, 1U);
  push("b");
  EXPECT_EQ(take().dropped, 0U);
}

TEST_F(LogQueueTest, RemainsFullUntilItsRecordsAreTaken) {
  queue_.setCapacity(1);
  queue_.open();
  push("a");
  push("dropped");
  queue_.setCapacity(2);
  push("would precede the gap");
  const LogQueue::Batch batch = take();
  EXPECT_THAT(messages(batch), ElementsAre("a"));
  EXPECT_EQ(batch.dropped, 2U);
}

TEST_F(LogQueueTest, KeepsQueuedRecordsWhenItsCapacityIsReduced) {
  queue_.open();
  push("a");
  push("b");
  queue_.setCapacity(1);
  push("dropped");
  const LogQueue::Batch batch = take();
  EXPECT_THAT(messages(batch), ElementsAre("a", "b"));
  EXPECT_EQ(batch.dropped, 1U);
}

TEST_F(LogQueueTest, RefusesACapacityOfZeroOrBeyondTheMaximum) {
  for (const bool open : {false, true}) {
    for (const std::size_t records :
         {std::size_t{0}, LogQueue::maximumCapacity + 1, std::numeric_limits<std::size_t>::max()}) {
      try {
        queue_.setCapacity(records);
        FAIL() << records << " was taken";
      } catch (const std::invalid_argument& refusal) {
        EXPECT_EQ(refusal.what(),
                  "a log queue holds 1 to 1048576 records, not " + std::to_string(records));
      }
    }
    if (!open) {
      queue_.open();
    }
  }
}

TEST_F(LogQueueTest, Holds8192RecordsByDefault) {
  queue_.open();
  for (int count = 0; count < 8193; ++count) {
    push("");
  }
  EXPECT_EQ(queue_.counts().dropped, 1U);
  EXPECT_EQ(take().records.size(), 8192U);
}

TEST_F(LogQueueTest, IsFullIfItsMessagesHoldTooMuchText) {
  queue_.open();
  push(std::string(LogQueue::textLimit, 'x'));
  push("dropped");
  EXPECT_EQ(queue_.counts().dropped, 1U);
  EXPECT_EQ(take().records.size(), 1U);
  push("kept");
  EXPECT_EQ(queue_.counts().dropped, 1U);
}

TEST_F(LogQueueTest, HoldsMoreRecordsAfterItsCapacityGrows) {
  queue_.setCapacity(1);
  queue_.open();
  push("a");
  queue_.setCapacity(3);
  push("b");
  push("c");
  EXPECT_EQ(queue_.counts().dropped, 0U);
  EXPECT_THAT(messages(take()), ElementsAre("a", "b", "c"));
}

TEST_F(LogQueueTest, CountsLostRecordsAsFinishedAndAsDropped) {
  queue_.open();
  push("a");
  take();
  queue_.lose(1);
  EXPECT_TRUE(queue_.waitUntilFinished(0ms));
  EXPECT_EQ(queue_.counts().dropped, 1U);
}

TEST_F(LogQueueTest, WakesAWaitingThreadWhenARecordIsDeliveredOrLost) {
  queue_.open();
  for (const bool isLost : {false, true}) {
    push("a");
    take();
    test::SleepingThread waiting([&] {
      const auto start = std::chrono::steady_clock::now();
      EXPECT_TRUE(queue_.waitUntilFinished(1h));
      EXPECT_LT(std::chrono::steady_clock::now() - start, 30s);
    });
    waiting.awaitSleep();
    isLost ? queue_.lose(1) : queue_.finish(1);
    waiting.join();
  }
}

TEST_F(LogQueueTest, IsFinishedWhenAllQueuedRecordsAreFinished) {
  queue_.open();
  EXPECT_TRUE(queue_.waitUntilFinished(0ms));
  push("a");
  push("b");
  EXPECT_FALSE(queue_.waitUntilFinished(0ms));
  take();
  queue_.finish(1);
  EXPECT_FALSE(queue_.waitUntilFinished(1ms));
  queue_.finish(1);
  EXPECT_TRUE(queue_.waitUntilFinished(0ms));
}

/// A thread that takes and finishes one batch of a queue. With the delay `forEver`, the thread
/// waits until the queue is half full or closed. The constructor returns after the thread has begun
/// to wait.
class OneTake {
 public:
  explicit OneTake(LogQueue& queue)
      : taker_([this, &queue] {
          queue.take(batch_);
          queue.finish(batch_.records.size());
        }) {
    taker_.awaitSleep();
  }
  ~OneTake() { taker_.join(); }

 private:
  LogQueue::Batch batch_;
  test::SleepingThread taker_;
};

constexpr std::chrono::hours forEver{1};
constexpr std::chrono::milliseconds patience{30'000};

TEST(LogQueueWithADelay, ReturnsItsRecordsAsSoonAsItIsHalfFull) {
  LogQueue queue(forEver);
  queue.setCapacity(4);
  queue.open();
  queue.push(recordOf("a"));
  const OneTake take(queue);
  EXPECT_FALSE(queue.waitUntilFinished(0ms)) << "nothing was gathered";
  queue.push(recordOf("b"));
  EXPECT_TRUE(queue.waitUntilFinished(patience));
  queue.close();  // releases a taker that still waits for more records
}

TEST(LogQueueWithADelay, ReturnsItsRecordsAsSoonAsItIsClosed) {
  LogQueue queue(forEver);
  queue.open();
  queue.push(recordOf("a"));
  const OneTake take(queue);
  EXPECT_FALSE(queue.waitUntilFinished(0ms)) << "nothing was gathered";
  queue.close();
  EXPECT_TRUE(queue.waitUntilFinished(patience));
}

TEST_F(LogQueueTest, ReturnsQueuedRecordsAfterItIsClosedAndThenEnds) {
  queue_.open();
  push("a");
  queue_.close();
  push("discarded");
  LogQueue::Batch batch;
  EXPECT_TRUE(queue_.take(batch));
  EXPECT_THAT(messages(batch), ElementsAre("a"));
  batch.records.clear();
  EXPECT_FALSE(queue_.take(batch));
}

}  // namespace
}  // namespace quordalvane
