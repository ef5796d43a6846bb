#include "iphone-IOPort/LogWriter.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <stdexcept>
#include <thread>

#include "logging/CallbackSink.h"
#include "logging/StandardErrorSink.h"
#include "tests/unit/logging/LogFixtures.h"

namespace quordalvane {
namespace {

using namespace std::chrono_literals;

void output(std::string message) {
  LogWriter::sharedInstance().outputLogAsyncWithLogType(ZKLogTypeRead, 3, "0xabc", "Port.cpp", 12,
                                                        "-[Port read:]", std::move(message));
}

/// After each test, switches logging off and selects only level 0, the default.
class LogWriterTest : public testing::Test {
 protected:
  ~LogWriterTest() override {
    LogWriter::setLogging(false);
    LogWriter::setTargetLogLevels({0});
  }
};

TEST_F(LogWriterTest, IsOffUntilItIsSwitchedOn) {
  EXPECT_FALSE(LogWriter::isLogging());
  LogWriter::setLogging(true);
  EXPECT_TRUE(LogWriter::isLogging());
}

TEST_F(LogWriterTest, LogsOnlyLevelZeroByDefault) {
  EXPECT_TRUE(LogWriter::isTargetLogLevel(0));
  EXPECT_FALSE(LogWriter::isTargetLogLevel(1));
}

TEST_F(LogWriterTest, LogsOnlyTheTargetLevels) {
  LogWriter::setTargetLogLevels({1, 63});
  for (std::int32_t level = -65; level < 130; ++level) {
    EXPECT_EQ(LogWriter::isTargetLogLevel(level), level == 1 || level == 63) << level;
  }
  LogWriter::setTargetLogLevels({});
  EXPECT_FALSE(LogWriter::isTargetLogLevel(1));
}

TEST_F(LogWriterTest, RefusesAnInvalidLevelAndChangesNothing) {
  EXPECT_THROW(LogWriter::setTargetLogLevels({1, 64}), std::out_of_range);
  EXPECT_THROW(LogWriter::setTargetLogLevels({-1, 1}), std::out_of_range);
  EXPECT_TRUE(LogWriter::isTargetLogLevel(0));
  EXPECT_FALSE(LogWriter::isTargetLogLevel(1));
}

TEST_F(LogWriterTest, IsASingleInstanceInTheProcess) {
  EXPECT_EQ(&LogWriter::sharedInstance(), &LogWriter::sharedInstance());
}

TEST_F(LogWriterTest, DescribesEachByteInHex) {
  EXPECT_EQ(LogWriter::createByteArrayDescription({0x1b, 0x06, 0x01}), "<1b 06 01>");
  EXPECT_EQ(LogWriter::createByteArrayDescription({0xff}), "<ff>");
  const std::vector<std::uint8_t> many(1000, 0xa5);
  const std::string description = LogWriter::createByteArrayDescription(many);
  EXPECT_EQ(description.size(), 3001U);
  EXPECT_EQ(description.substr(2996), "5 a5>");
}

TEST_F(LogWriterTest, DescribesAnEmptySequenceByEmptyBrackets) {
  EXPECT_EQ(LogWriter::createByteArrayDescription(std::vector<std::uint8_t>()), "<>");
  EXPECT_EQ(LogWriter::createByteArrayDescription(nullptr, 0), "<>");
}

TEST_F(LogWriterTest, DescribesTheGivenNumberOfBytes) {
  const std::array<std::uint8_t, 3> bytes{1, 2, 3};
  EXPECT_EQ(LogWriter::createByteArrayDescription(bytes.data(), 2), "<01 02>");
}

TEST_F(LogWriterTest, PassesEveryFieldToTheSinksWithTimeAndThread) {
  LogWriter& writer = LogWriter::sharedInstance();
  const auto sink = std::make_shared<test::KeepingSink>();
  writer.addSink(sink);
  const auto before = std::chrono::system_clock::now();
  output("message");
  ASSERT_TRUE(writer.flush(1min));
  writer.removeSink(sink);
  ASSERT_EQ(sink->records().size(), 1U);
  const LogRecord record = sink->records().front();
  EXPECT_EQ(record.type, ZKLogTypeRead);
  EXPECT_EQ(record.level, 3);
  EXPECT_EQ(record.object, "0xabc");
  EXPECT_STREQ(record.file, "Port.cpp");
  EXPECT_EQ(record.line, 12);
  EXPECT_STREQ(record.method, "-[Port read:]");
  EXPECT_EQ(record.message, "message");
  EXPECT_EQ(record.thread, currentThreadId());
  EXPECT_GE(record.time, before);
}

TEST_F(LogWriterTest, CountsLoggedAndDroppedRecords) {
  LogWriter& writer = LogWriter::sharedInstance();
  const LogStatistics before = writer.statistics();
  std::atomic<bool> entered{false};
  std::atomic<bool> released{false};
  const auto sink = std::make_shared<CallbackSink>([&](const LogRecord&) {
    entered = true;
    entered.notify_all();
    released.wait(false);
  });
  writer.setQueueCapacity(2);
  writer.addSink(sink);
  output("taken");
  entered.wait(false);
  for (const char* message : {"waits", "waits", "dropped"}) {
    output(message);
  }
  const LogStatistics after = writer.statistics();
  EXPECT_EQ(after.handedOver, before.handedOver + 4);
  EXPECT_EQ(after.dropped, before.dropped + 1);
  released = true;
  released.notify_all();
  ASSERT_TRUE(writer.flush(1min));
  writer.removeSink(sink);
  writer.setQueueCapacity(8192);
}

/// Each of these tests ends a process, so it uses a child process.
class LogWriterAtExit : public testing::Test {
 protected:
  LogWriterAtExit() { GTEST_FLAG_SET(death_test_style, "threadsafe"); }
};

std::ptrdiff_t linesOf(const std::string& text) {
  return std::count(text.begin(), text.end(), '\n');
}

TEST_F(LogWriterAtExit, WritesQueuedRecords) {
  EXPECT_EXIT(
      {
        LogWriter::sharedInstance().addSink(std::make_shared<StandardErrorSink>());
        for (int count = 0; count < 5000; ++count) {
          output("before the exit");
        }
        std::exit(0);
      },
      testing::ExitedWithCode(0), testing::ResultOf(linesOf, 5000));
}

TEST_F(LogWriterAtExit, LetsTheProcessEndEvenIfOtherThreadsStillLog) {
  EXPECT_EXIT(
      {
        LogWriter::sharedInstance().addSink(
            std::make_shared<CallbackSink>([](const LogRecord&) {}));
        std::atomic<int> running{0};
        for (int thread = 0; thread < 4; ++thread) {
          std::thread([&running] {
            ++running;
            running.notify_all();
            while (true) {
              output("for ever");
            }
          }).detach();
        }
        for (int seen = running; seen < 4; seen = running) {
          running.wait(seen);
        }
        std::exit(0);
      },
      testing::ExitedWithCode(0), "");
}

TEST_F(LogWriterAtExit, LetsTheProcessEndEvenIfASinkHangs) {
  EXPECT_EXIT(
      {
        static std::atomic<bool> entered{false};
        LogWriter::sharedInstance().addSink(std::make_shared<CallbackSink>([](const LogRecord&) {
          entered = true;
          entered.notify_all();
          std::atomic<bool>(false).wait(false);
        }));
        output("never written");
        entered.wait(false);
        std::exit(0);
      },
      testing::ExitedWithCode(0), "");
}

}  // namespace
}  // namespace quordalvane
