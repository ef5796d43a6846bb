// Eight threads use the process's logger at the same time, while another thread adds and removes
// sinks or changes levels.

#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <memory>
#include <thread>
#include <vector>

#include "iphone-IOPort/LogWriter.h"
#include "logging/CallbackSink.h"
#include "tests/support/Replay.h"

namespace quordalvane::test {
namespace {

constexpr std::uint64_t writers = 8;

TEST(Logger, CountsEachLostRecordOfEightThreads) {
  LogWriter& logger = LogWriter::sharedInstance();
  const std::uint64_t count = caseCount("QUOR_LOG_RECORDS", 20000);
  RecordProperty("cases", std::to_string(writers * count));
  const LogStatistics before = logger.statistics();
  std::array<std::int64_t, writers> last;
  last.fill(-1);
  std::uint64_t delivered = 0;
  bool inOrder = true;
  const auto sink = std::make_shared<CallbackSink>([&](const LogRecord& record) {
    if (record.method != std::string_view("counted")) {
      return;  // the logger's own record about dropped records
    }
    ++delivered;
    auto& previous = last.at(std::stoul(record.message));
    inOrder = inOrder && record.line > previous;
    previous = record.line;
  });
  logger.addSink(sink);

  std::atomic<bool> stop = false;
  std::thread visitor([&] {
    while (!stop) {
      const auto passing = std::make_shared<CallbackSink>([](const LogRecord&) {});
      logger.addSink(passing);
      logger.setQueueCapacity(64);
      logger.removeSink(passing);
      logger.setQueueCapacity(4096);
      logger.statistics();
    }
  });
  std::vector<std::thread> threads;
  for (std::uint64_t writer = 0; writer < writers; ++writer) {
    threads.emplace_back([&, writer] {
      for (std::uint64_t i = 0; i < count; ++i) {
        logger.outputLogAsyncWithLogType(ZKLogTypeProcess, 0, "0x1", "file",
                                         static_cast<std::int64_t>(i), "counted",
                                         std::to_string(writer));
      }
    });
  }
  for (std::thread& thread : threads) {
    thread.join();
  }
  stop = true;
  visitor.join();
  ASSERT_TRUE(logger.flush(std::chrono::seconds(60)));
  logger.removeSink(sink);

  const LogStatistics after = logger.statistics();
  EXPECT_EQ(after.handedOver - before.handedOver, writers * count);
  EXPECT_EQ(delivered + (after.dropped - before.dropped), writers * count);
  EXPECT_GT(delivered, 0U);
  EXPECT_TRUE(inOrder) << "each thread's records arrive in its order";
}

TEST(Logger, CanChangeItsLevelsWhileEightThreadsReadTheLevels) {
  const std::uint64_t count = caseCount("QUOR_LOG_RECORDS", 20000);
  LogWriter::setTargetLogLevels({3});
  std::atomic<bool> stop = false;
  std::vector<std::thread> threads;
  for (std::uint64_t writer = 0; writer < writers; ++writer) {
    threads.emplace_back([&] {
      while (!stop) {
        LogWriter::isLogging();
        EXPECT_FALSE(LogWriter::isTargetLogLevel(7));
        EXPECT_TRUE(LogWriter::isTargetLogLevel(3));
      }
    });
  }
  for (std::uint64_t i = 0; i < count; ++i) {
    LogWriter::setLogging(i % 2 == 0);
    LogWriter::setTargetLogLevels(i % 2 == 0 ? std::set<std::int32_t>{3}
                                             : std::set<std::int32_t>{3, 4});
  }
  stop = true;
  for (std::thread& thread : threads) {
    thread.join();
  }
  LogWriter::setLogging(false);
  LogWriter::setTargetLogLevels({0});
}

}  // namespace
}  // namespace quordalvane::test
