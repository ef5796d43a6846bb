#include "logging/LogDelivery.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <optional>
#include <stdexcept>
#include <thread>

#include "logging/CallbackSink.h"
#include "logging/StandardErrorSink.h"
#include "tests/unit/logging/LogFixtures.h"

namespace quordalvane {
namespace {

using namespace std::chrono_literals;
using test::KeepingSink;
using test::recordOf;
using testing::ElementsAre;
using testing::HasSubstr;

/// Long enough that only a defect reaches it.
constexpr std::chrono::milliseconds patience{30'000};

/// Blocks every thread until it is opened.
class Gate {
 public:
  void open() {
    open_ = true;
    open_.notify_all();
  }
  void pass() const { open_.wait(false); }

 private:
  std::atomic<bool> open_{false};
};

/// Hangs in its first write until it is released.
class HangingSink : public KeepingSink {
 public:
  void write(std::span<const LogRecord> records) override {
    entered_.open();
    released_.pass();
    KeepingSink::write(records);
  }

  void waitUntilItHangs() const { entered_.pass(); }
  void release() { released_.open(); }

 private:
  Gate entered_;
  Gate released_;
};

class ThrowingSink : public LogSink {
 public:
  void write(std::span<const LogRecord>) override { throw std::runtime_error("no room\nat all"); }
};

void log(LogDelivery& delivery, std::string message) {
  delivery.handOver(recordOf(std::move(message)));
}

TEST(LogDelivery, DeliversEveryRecordToEverySinkInOrder) {
  LogDelivery delivery;
  const auto first = std::make_shared<KeepingSink>();
  const auto second = std::make_shared<KeepingSink>();
  delivery.addSink(first);
  delivery.addSink(second);
  log(delivery, "a");
  log(delivery, "b");
  ASSERT_TRUE(delivery.flush(patience));
  EXPECT_THAT(first->messages(), ElementsAre("a", "b"));
  EXPECT_THAT(second->messages(), ElementsAre("a", "b"));
}

TEST(LogDelivery, DiscardsRecordsFromBeforeTheFirstSink) {
  LogDelivery delivery;
  log(delivery, "lost");
  const auto sink = std::make_shared<KeepingSink>();
  delivery.addSink(sink);
  log(delivery, "kept");
  ASSERT_TRUE(delivery.flush(patience));
  EXPECT_THAT(sink->messages(), ElementsAre("kept"));
}

TEST(LogDelivery, DeliversQueuedRecordsBeforeItIsDestroyed) {
  const auto sink = std::make_shared<KeepingSink>();
  {
    LogDelivery delivery;
    delivery.addSink(sink);
    log(delivery, "a");
    log(delivery, "b");
  }
  EXPECT_THAT(sink->messages(), ElementsAre("a", "b"));
}

TEST(LogDelivery, DeliversRecordsWithoutAFlush) {
  LogDelivery delivery;
  Gate arrived;
  delivery.addSink(std::make_shared<CallbackSink>([&](const LogRecord&) { arrived.open(); }));
  log(delivery, "a");
  arrived.pass();
}

TEST(LogDelivery, DropsRecordsInsteadOfWaitingForASlowSinkAndLogsTheirCount) {
  LogDelivery delivery;
  const auto sink = std::make_shared<HangingSink>();
  delivery.setQueueCapacity(3);
  delivery.addSink(sink);
  log(delivery, "taken");
  sink->waitUntilItHangs();
  for (const char* message : {"a", "b", "c", "dropped", "dropped"}) {
    log(delivery, message);
  }
  EXPECT_EQ(delivery.counts().dropped, 2U);
  sink->release();
  ASSERT_TRUE(delivery.flush(patience));
  log(delivery, "d");
  ASSERT_TRUE(delivery.flush(patience));
  EXPECT_THAT(
      sink->messages(),
      ElementsAre("taken", "a", "b", "c", "log records dropped here, the queue was full: 2", "d"));
  EXPECT_EQ(delivery.counts().handedOver, 7U);
  EXPECT_EQ(delivery.counts().dropped, 2U);
}

TEST(LogDelivery, LogsDroppedRecordsAsAnErrorWithTheTimeOfTheFirstDrop) {
  const auto sink = std::make_shared<HangingSink>();
  LogDelivery delivery;
  delivery.setQueueCapacity(1);
  delivery.addSink(sink);
  log(delivery, "taken");
  sink->waitUntilItHangs();
  for (const auto second : {1s, 2s, 3s}) {
    LogRecord record = recordOf("");
    record.time += second;
    delivery.handOver(std::move(record));
  }
  sink->release();
  ASSERT_TRUE(delivery.flush(patience));
  const LogRecord drop = sink->records().back();
  EXPECT_EQ(drop.type, ZKLogTypeError);
  EXPECT_EQ(drop.time.time_since_epoch(), 2s);
  EXPECT_NE(drop.thread, currentThreadId());
  EXPECT_EQ(drop.level, 0);
  EXPECT_EQ(drop.object, "0x0");
}

TEST(LogDelivery, DeliversEachRecordOfEightThreadsOrCountsItAsDropped) {
  constexpr int threadCount = 8;
  constexpr int recordCount = 2000;
  LogDelivery delivery;
  const auto sink = std::make_shared<KeepingSink>();
  delivery.setQueueCapacity(100);
  delivery.addSink(sink);
  {
    std::vector<std::jthread> threads;
    for (int thread = 0; thread < threadCount; ++thread) {
      threads.emplace_back([&delivery, thread] {
        for (int line = 0; line < recordCount; ++line) {
          LogRecord record = recordOf("counted");
          record.thread = thread;
          record.line = line;
          delivery.handOver(std::move(record));
        }
      });
    }
  }
  ASSERT_TRUE(delivery.flush(patience));
  std::uint64_t delivered = 0;
  std::uint64_t dropped = 0;
  std::array<std::int64_t, threadCount> next{};
  for (const LogRecord& record : sink->records()) {
    if (record.message == "counted") {
      ++delivered;
      auto& expected = next[static_cast<std::size_t>(record.thread)];
      EXPECT_GE(record.line, expected) << "out of order";
      expected = record.line + 1;
    } else {
      dropped += std::stoull(record.message.substr(record.message.rfind(' ')));
    }
  }
  EXPECT_EQ(delivered + dropped, std::uint64_t{threadCount} * recordCount);
  EXPECT_EQ(delivery.counts().dropped, dropped);
}

TEST(LogDelivery, EndsAFlushAtItsTimeoutIfASinkHangs) {
  LogDelivery delivery;
  const auto sink = std::make_shared<HangingSink>();
  delivery.addSink(sink);
  log(delivery, "a");
  sink->waitUntilItHangs();
  EXPECT_FALSE(delivery.flush(1ms));
  EXPECT_FALSE(delivery.flush(0ms));
  sink->release();
  EXPECT_TRUE(delivery.flush(patience));
  EXPECT_TRUE(delivery.flush(0ms));
}

TEST(LogDelivery, FlushesAtOnceWhenThereIsNoSink) {
  LogDelivery delivery;
  log(delivery, "lost");
  EXPECT_TRUE(delivery.flush(0ms));
}

TEST(LogDelivery, LetsASinkLogAndFlush) {
  LogDelivery delivery;
  std::vector<std::string> seen;
  std::optional<bool> flushed;
  delivery.addSink(std::make_shared<CallbackSink>([&](const LogRecord& record) {
    seen.push_back(record.message);
    if (record.message == "first") {
      log(delivery, "from the sink");
      flushed = delivery.flush(patience);
    }
  }));
  log(delivery, "first");
  ASSERT_TRUE(delivery.flush(patience));
  ASSERT_TRUE(delivery.flush(patience));
  EXPECT_THAT(seen, ElementsAre("first", "from the sink"));
  EXPECT_EQ(flushed, false) << "a sink cannot wait for itself";
}

TEST(LogDelivery, DoesNotCallARemovedSinkAfterAFlush) {
  LogDelivery delivery;
  auto sink = std::make_shared<HangingSink>();
  delivery.addSink(sink);
  log(delivery, "a");
  sink->waitUntilItHangs();
  delivery.removeSink(sink);
  sink->release();
  ASSERT_TRUE(delivery.flush(patience));
  log(delivery, "b");
  ASSERT_TRUE(delivery.flush(patience));
  EXPECT_THAT(sink->messages(), ElementsAre("a"));
  EXPECT_EQ(sink.use_count(), 1);
}

TEST(LogDelivery, IgnoresTheRemovalOfASinkThatWasNeverAdded) {
  LogDelivery delivery;
  const auto sink = std::make_shared<KeepingSink>();
  delivery.addSink(sink);
  delivery.removeSink(std::make_shared<KeepingSink>());
  log(delivery, "a");
  ASSERT_TRUE(delivery.flush(patience));
  EXPECT_THAT(sink->messages(), ElementsAre("a"));
}

TEST(LogDelivery, ReportsAFailingSinkOnceAndContinuesWithTheOtherSinks) {
  const test::RedirectedStandardError redirected;
  LogDelivery delivery;
  const auto healthy = std::make_shared<KeepingSink>();
  delivery.addSink(std::make_shared<ThrowingSink>());
  delivery.addSink(healthy);
  for (const char* message : {"a", "b"}) {
    log(delivery, message);
    ASSERT_TRUE(delivery.flush(patience));
  }
  EXPECT_THAT(healthy->messages(), ElementsAre("a", "b"));
  EXPECT_EQ(redirected.text(),
            "logging: a sink failed; records are missing from its output: no room\\nat all\n");
}

TEST(LogDelivery, ReportsEachFailingSink) {
  const test::RedirectedStandardError redirected;
  LogDelivery delivery;
  delivery.addSink(std::make_shared<ThrowingSink>());
  delivery.addSink(std::make_shared<CallbackSink>([](const LogRecord&) { throw 1; }));
  log(delivery, "a");
  ASSERT_TRUE(delivery.flush(patience));
  EXPECT_THAT(redirected.text(), HasSubstr("no room"));
  EXPECT_THAT(redirected.text(), HasSubstr("an exception without a text"));
}

TEST(LogDelivery, DeliversToOtherSinksIfStandardErrorIsABrokenPipe) {
  const test::RedirectedStandardError redirected;
  std::array<int, 2> pipe{};
  ASSERT_EQ(::pipe(pipe.data()), 0);
  ::close(pipe[0]);
  ::dup2(pipe[1], STDERR_FILENO);
  ::close(pipe[1]);
  LogDelivery delivery;
  const auto healthy = std::make_shared<KeepingSink>();
  delivery.addSink(std::make_shared<StandardErrorSink>());
  delivery.addSink(healthy);
  log(delivery, "a");
  ASSERT_TRUE(delivery.flush(patience));
  EXPECT_THAT(healthy->messages(), ElementsAre("a"));
}

}  // namespace
}  // namespace quordalvane
