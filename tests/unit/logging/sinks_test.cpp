#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/socket.h>

#include <array>
#include <filesystem>
#include <stdexcept>

#include "logging/CallbackSink.h"
#include "logging/JsonFileSink.h"
#include "logging/RecordText.h"
#include "logging/StandardErrorSink.h"
#include "tests/unit/logging/LogFixtures.h"

namespace quordalvane {
namespace {

using test::recordOf;
using testing::ElementsAre;

const std::array<LogRecord, 2> recordCount{recordOf("one"), recordOf("two\x1b[2J")};

TEST(JsonFileSink, WritesOneJsonObjectPerLine) {
  const test::TemporaryFolder folder;
  JsonFileSink(folder.file("port.log")).write(recordCount);
  std::string expected;
  appendJsonLine(expected, recordCount[0]);
  appendJsonLine(expected, recordCount[1]);
  EXPECT_EQ(test::contentsOf(folder.file("port.log")), expected);
}

TEST(JsonFileSink, NeverSplitsALineBetweenFiles) {
  const test::TemporaryFolder folder;
  JsonFileSink sink(folder.file("port.log"), {.maximumBytes = 500, .keptFiles = 50});
  for (int count = 0; count < 20; ++count) {
    sink.write(recordCount);
  }
  int lines = 0;
  int files = 0;
  for (std::string name = "port.log"; std::filesystem::exists(folder.file(name));
       name = "port.log." + std::to_string(++files)) {
    std::ifstream file(folder.file(name));
    EXPECT_LE(std::filesystem::file_size(folder.file(name)), 500U) << name;
    for (std::string line; std::getline(file, line); ++lines) {
      EXPECT_TRUE(line.starts_with("{\"time\"") && line.ends_with("\"}")) << line;
    }
  }
  EXPECT_EQ(lines, 40);
  EXPECT_GT(files, 5);
}

TEST(StandardErrorSink, WritesOneReadableLineForEachRecord) {
  std::string expected;
  appendReadableLine(expected, recordCount[0]);
  appendReadableLine(expected, recordCount[1]);
  const test::RedirectedStandardError redirected;
  StandardErrorSink().write(recordCount);
  EXPECT_EQ(redirected.text(), expected);
}

TEST(StandardErrorSink, WritesMoreTextThanItsBufferHolds) {
  const std::vector<LogRecord> many(3000, recordOf(std::string(100, 'x')));
  std::string expected;
  for (const LogRecord& record : many) {
    appendReadableLine(expected, record);
  }
  const test::RedirectedStandardError redirected;
  StandardErrorSink().write(many);
  EXPECT_EQ(redirected.text(), expected);
}

TEST(StandardErrorSink, WritesItsBufferAfter64KiB) {
  const std::vector<LogRecord> many(700, recordOf(std::string(100, 'x')));
  std::string line;
  appendReadableLine(line, many.front());
  std::array<int, 2> ends{};
  ASSERT_EQ(::socketpair(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0, ends.data()), 0);
  {
    const test::RedirectedStandardError redirected;
    ::dup2(ends[1], STDERR_FILENO);
    StandardErrorSink().write(many);
  }
  std::vector<char> written(std::size_t{1} << 20U);
  const ssize_t first = ::recv(ends[0], written.data(), written.size(), 0);
  ::close(ends[0]);
  ::close(ends[1]);
  EXPECT_GE(first, 65'536);
  EXPECT_LT(first, 65'536 + static_cast<ssize_t>(line.size()));
}

TEST(StandardErrorSink, ThrowsIfStandardErrorCannotBeWritten) {
  const test::RedirectedStandardError redirected;
  ::close(STDERR_FILENO);
  EXPECT_THROW(StandardErrorSink().write(recordCount), std::system_error);
}

TEST(CallbackSink, CallsTheFunctionForEachRecordInOrder) {
  std::vector<std::string> seen;
  CallbackSink([&](const LogRecord& record) { seen.push_back(record.message); }).write(recordCount);
  EXPECT_THAT(seen, ElementsAre("one", "two\\u001b[2J"));
}

TEST(CallbackSink, EscapesMessageAndObjectAndPassesOtherFieldsUnchanged) {
  LogRecord record = recordOf("a\nb");
  record.object = "c\nd";
  record.level = 5;
  record.type = ZKLogTypeError;
  CallbackSink([](const LogRecord& shown) {
    EXPECT_EQ(shown.message, "a\\nb");
    EXPECT_EQ(shown.object, "c\\nd");
    EXPECT_EQ(shown.level, 5);
    EXPECT_EQ(shown.type, ZKLogTypeError);
    EXPECT_EQ(shown.thread, 7);
    EXPECT_STREQ(shown.method, "-[Maker make]");
  }).write(std::span(&record, 1));
}

TEST(CallbackSink, EscapesTheObjectFieldEvenIfTheMessageFieldNeedsNoEscape) {
  LogRecord record = recordOf("plain");
  record.object = "c\nd";
  std::string seen;
  CallbackSink([&](const LogRecord& shown) { seen = shown.object; }).write(std::span(&record, 1));
  EXPECT_EQ(seen, "c\\nd");
}

TEST(CallbackSink, CallsTheFunctionForEveryRecordAndRethrowsTheFirstException) {
  std::vector<std::string> seen;
  CallbackSink sink([&](const LogRecord& record) {
    seen.push_back(record.message);
    throw std::runtime_error(record.message);
  });
  try {
    sink.write(recordCount);
    FAIL() << "nothing was thrown";
  } catch (const std::runtime_error& failure) {
    EXPECT_STREQ(failure.what(), "one");
  }
  EXPECT_EQ(seen.size(), 2U);
}

}  // namespace
}  // namespace quordalvane
