// Tests that call the command as a function. A test that starts the command as a process cannot
// pass every argument, and cannot interrupt the command at an exact moment.

#include "tools/quorport/Run.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <cstdio>
#include <string>

#include "tests/support/SleepingThread.h"
#include "tools/quorport/Interruption.h"
#include "tools/quorport/Report.h"

namespace quordalvane::tool {
namespace {

using namespace std::chrono_literals;
using testing::HasSubstr;
using testing::Not;

// A file without a name that takes the output of a command.
class Capture {
 public:
  Capture() : file_(std::tmpfile()) {}
  ~Capture() { std::fclose(file_); }
  Capture(const Capture&) = delete;
  Capture& operator=(const Capture&) = delete;

  int descriptor() const { return ::fileno(file_); }

  std::string text() const {
    std::array<char, 65536> bytes;
    const ssize_t count = ::pread(descriptor(), bytes.data(), bytes.size(), 0);
    return {bytes.data(), static_cast<std::size_t>(count)};
  }

 private:
  std::FILE* file_;
};

struct Ran {
  int code;
  std::string out;
  std::string err;
};

Ran runWith(const std::vector<std::string>& arguments, const std::string& input = "") {
  const Capture in, out, err;
  EXPECT_EQ(::pwrite(in.descriptor(), input.data(), input.size(), 0),
            static_cast<ssize_t>(input.size()));
  const int code = run(arguments, {in.descriptor(), out.descriptor(), err.descriptor()});
  return {code, out.text(), err.text()};
}

TEST(Command, WritesToTheGivenStreams) {
  const Ran ran = runWith({"-d", "virtual:", "online"});
  EXPECT_EQ(ran.code, 0);
  EXPECT_EQ(ran.out, "virtual: on line\n");
  EXPECT_EQ(ran.err, "");
}

TEST(Command, ReadsTheJobFromTheGivenStream) {
  const Ran ran = runWith({"-d", "virtual:", "print", "-"}, "text\n");
  EXPECT_EQ(ran.code, 0);
  EXPECT_EQ(ran.out, "virtual: printed: the printer confirmed all 5 bytes\n");
}

TEST(Command, TreatsAZeroByteInAnArgumentAsData) {
  const std::string odd("BT:a\0b", 6);
  const Ran ran = runWith({"--port-name", odd, "online"});
  EXPECT_EQ(ran.code, 3);
  EXPECT_THAT(ran.err, HasSubstr("\"BT:a\\u0000b\""));
  EXPECT_THAT(ran.err, Not(HasSubstr(std::string(1, '\0'))));
}

TEST(Command, CanRunSeveralTimesInOneProcess) {
  EXPECT_EQ(runWith({"online"}).code, 0);
  EXPECT_EQ(runWith({"-d", "virtual:,offline=true", "online"}).code, 4);
  EXPECT_EQ(runWith({"online"}).code, 0);
}

class InterruptionTest : public testing::Test {
 protected:
  int givenUp_ = 0;
  std::string toldAtLast_;
  Interruption interruption_{failed(ExitCode::Interrupted, "interrupted"),
                             [this](const Report& report) {
                               ++givenUp_;
                               toldAtLast_ = report.error;
                             }};
};

TEST_F(InterruptionTest, EndsTheCommandAtOnceWhileNoPortIsOpen) {
  interruption_.interrupt(ExitCode::Interrupted);
  EXPECT_EQ(givenUp_, 1);
}

TEST_F(InterruptionTest, NamesTheDeviceThatTheCommandUsed) {
  EXPECT_EQ(interruption_.device(), std::nullopt);
  interruption_.speakTo("tcp:192.0.2.10:9100");
  interruption_.interrupt(ExitCode::Interrupted);
  EXPECT_EQ(interruption_.device(), "tcp:192.0.2.10:9100");
  EXPECT_EQ(toldAtLast_, "tcp:192.0.2.10:9100: interrupted");
}

TEST_F(InterruptionTest, WakesTheThreadOfAnExchange) {
  interruption_.beginExchange();
  test::SleepingThread exchange([this] { EXPECT_THROW(interruption_.sleep(1h), Interrupted); });
  exchange.awaitSleep();
  interruption_.interrupt(ExitCode::Interrupted);
  exchange.join();
  EXPECT_EQ(givenUp_, 0);
}

TEST_F(InterruptionTest, EndsEveryLaterSleepOfTheExchange) {
  interruption_.beginExchange();
  interruption_.interrupt(ExitCode::Interrupted);
  EXPECT_THROW(interruption_.sleep(1h), Interrupted);
  EXPECT_THROW(interruption_.sleep(1h), Interrupted);
}

TEST_F(InterruptionTest, EndsAnExchangeThatNeverSleeps) {
  interruption_.beginExchange();
  EXPECT_NO_THROW(interruption_.check());
  interruption_.interrupt(ExitCode::Interrupted);
  EXPECT_THROW(interruption_.check(), Interrupted);
  interruption_.end();
  EXPECT_NO_THROW(interruption_.check());
}

TEST_F(InterruptionTest, AnInterruptionDuringAnExchangeDoesNotEndASleepAfterTheExchange) {
  interruption_.beginExchange();
  interruption_.interrupt(ExitCode::Interrupted);
  interruption_.end();
  const auto before = std::chrono::steady_clock::now();
  EXPECT_NO_THROW(interruption_.sleep(1ms));
  EXPECT_GE(std::chrono::steady_clock::now() - before, 1ms);
}

TEST_F(InterruptionTest, AnInterruptionDuringTheLastStageEndsTheCommandAfterTheStage) {
  interruption_.beginExchange();
  interruption_.end();
  interruption_.interrupt(ExitCode::Interrupted);
  EXPECT_EQ(givenUp_, 0);
  interruption_.begin();
  EXPECT_EQ(givenUp_, 1);
}

TEST_F(InterruptionTest, HasNoEffectAfterTheLastStepOfTheCommand) {
  interruption_.end();
  interruption_.interrupt(ExitCode::Interrupted);
  EXPECT_EQ(givenUp_, 0);
}

}  // namespace
}  // namespace quordalvane::tool
