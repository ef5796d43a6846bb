#include <gtest/gtest.h>

#include <algorithm>
#include <numeric>

#include "tests/unit/port/Printer.h"

namespace quordalvane::test {
namespace {

const Bytes command = bytes("01 02 03 04 05 06 07 08");

Scenario takingInAttempts(std::vector<std::size_t> counts, std::uint32_t timeout = 10000) {
  Scenario scenario = Scenario::in(lineMode, timeout);
  scenario.script.takesInAttempts(std::move(counts));
  return scenario;
}

TEST(RetryingWriter, SendsTheCommandInOneAttemptAndLogsEveryStep) {
  const Outcome run = Scenario::in(lineMode).run(writeWithRetry(bytes("1b 06")));
  EXPECT_EQ(run.result, "2");
  EXPECT_EQ(run.all(), text(R"(
    Start writeWithRetry: | <data>
    gettimeofday 1000000.000000
    Start isConnected |
    accessory.isConnected 1
    End isConnected | -> 1
    Start write: | <1b 06>
    ignoreSigPipe
    output.hasSpaceAvailable 1
    output.hasSpaceAvailable 1
    Start isConnected |
    accessory.isConnected 1
    End isConnected | -> 1
    output.write <1b 06> -> 2
    Write write: | EAAccessory, size: 2, command: <1b 06>
    output.hasSpaceAvailable 1
    End write: | <1b 06>, -> 2
    End writeWithRetry: | <data>, -> 2
  )"));
}

TEST(RetryingWriter, Returns0ForAnEmptyCommand) {
  const Outcome run = Scenario::in(lineMode).run(writeWithRetry({}));
  EXPECT_EQ(run.result, "0");
  EXPECT_EQ(run.records("writeWithRetry:"), "Start | <data>\nEnd | <data>, -> 0\n");
}

TEST(RetryingWriter, SendsTheWholeCommandAfterAttemptsThatSentNothing) {
  const Outcome run = takingInAttempts({0, 0, 8}).run(writeWithRetry(command));
  EXPECT_EQ(run.result, "8");
  EXPECT_EQ(run.sent(), command);
  EXPECT_EQ(run.wire(), text(R"(
    2 x {
      slice for output 0.10000000149011612
      usleep 50000
    }
    output.write <01 02 03 04 05 06 07 08> -> 8
  )"));
}

TEST(RetryingWriter, StopsEarlyIfTheTotalSentEqualsTheNumberOfBytesLastOffered) {
  const Outcome run = takingInAttempts({3, 2}).run(writeWithRetry(command));
  EXPECT_EQ(run.result, "5");
  EXPECT_EQ(run.sent(), bytes("01 02 03 04 05")) << "three bytes remain unsent";
}

TEST(RetryingWriter, OmitsBytesOfTheCommandAfterTwoPartialWrites) {
  Scenario scenario = takingInAttempts({1, 2});
  scenario.script.writeReturns(3, -1);
  const Outcome run = scenario.run(writeWithRetry(command));
  EXPECT_EQ(run.wire(), text(R"(
    output.write <01 02 03 04 05 06 07 08> -> 1
    usleep 50000
    output.write <02 03 04 05 06 07 08> -> 2
    usleep 50000
    output.write <05 06 07 08> -> -1
  )")) << "04 is never sent";
}

TEST(RetryingWriter, RepeatsTheLastBytesForeverIfTheSentTotalExceedsTheCommand) {
  Scenario scenario = takingInAttempts({3, 5});
  scenario.script.isLostAfterBytes(8 + 10 * 5);
  const Outcome run = scenario.run(writeWithRetry(command));
  EXPECT_EQ(run.result, "-1");
  EXPECT_EQ(run.wire(), text(R"(
    output.write <01 02 03 04 05 06 07 08> -> 3
    usleep 50000
    11 x output.write <04 05 06 07 08> -> 5
  )")) << "without a pause and without a time-out";
}

TEST(RetryingWriter, EndsItsRepetitionWhenTheLinkIsLost) {
  Scenario scenario = takingInAttempts({3, 5});
  scenario.script.isLostAfterBytes(10000);
  const Outcome run = scenario.run(writeWithRetry(command));
  EXPECT_EQ(run.result, "-1");
  EXPECT_LT(run.sent().size(), 10000U + 5U);
}

TEST(RetryingWriter, FailsWhenTheElapsedWholeSecondsExceedTheTimeout) {
  Scenario scenario = Scenario::in(lineMode, 2000);
  scenario.script.hasNoSpace();
  const Outcome run = scenario.run(writeWithRetry(command));
  EXPECT_EQ(run.result, "-1");
  EXPECT_EQ(run.wire(), text(R"(
    20 x {
      slice for output 0.10000000149011612
      usleep 50000
    }
    slice for output 0.10000000149011612
  )")) << "3 s, in passes of 0.15 s";
  EXPECT_EQ(run.records("writeWithRetry:"), text(R"(
    Start | <data>
    Error | end.tv_sec - start.tv_sec > timeoutSec, 1000003, 1000000, 2
    End | <address>, -> -1
  )"));
}

TEST(RetryingWriter, MeasuresItsTimeoutInWholeSecondsOfTheClock) {
  Scenario scenario = Scenario::in(lineMode, 2000);
  scenario.script.hasNoSpace().startsPastTheSecond(950000);
  const Outcome run = scenario.run(writeWithRetry(command));
  EXPECT_EQ(run.wire().substr(0, 4), "13 x") << "2.05 s";
}

TEST(RetryingWriter, TreatsATimeoutBelow1000MillisecondsAs0Seconds) {
  for (const std::uint32_t timeout : {0U, 1U, 999U}) {
    Scenario scenario = Scenario::in(lineMode, timeout);
    scenario.script.hasNoSpace().startsPastTheSecond(890000);
    const Outcome run = scenario.run(writeWithRetry(command));
    EXPECT_EQ(run.result, "-1");
    EXPECT_NE(run.records("writeWithRetry:").find("> timeoutSec, 1000001, 1000000, 0\n"),
              std::string::npos)
        << timeout;
    EXPECT_EQ(run.wire(),
              "slice for output 0.10000000149011612\nusleep 50000\n"
              "slice for output 0.10000000149011612\n");
  }
}

TEST(RetryingWriter, ChecksItsTimeoutOnlyAfterAPartialWrite) {
  Scenario scenario = Scenario::in(lineMode, 0);
  scenario.script.stepsClock(2, 100);
  EXPECT_EQ(scenario.run(writeWithRetry(command)).result, "8");
}

TEST(RetryingWriter, DoesNotTimeOutWhenTheClockIsSetBack) {
  for (const std::int64_t step : {-1, -3600, -315360000}) {
    Scenario scenario = takingInAttempts({0, 8}, 0);
    scenario.script.stepsClock(2, step);
    EXPECT_EQ(scenario.run(writeWithRetry(command)).result, "8") << step;
  }
}

TEST(RetryingWriter, TreatsTheLargestTimeoutAsAVeryLongTime) {
  Scenario scenario = takingInAttempts({0, 8}, 4294967295U);
  scenario.script.stepsClock(2, 4294967);
  EXPECT_EQ(scenario.run(writeWithRetry(command)).result, "8");
  scenario.script.clockSteps = {{2, 4294968}};
  EXPECT_EQ(scenario.run(writeWithRetry(command)).result, "-1");
}

TEST(RetryingWriter, DoesNotWriteIfTheLinkIsLost) {
  Scenario scenario = Scenario::in(lineMode);
  scenario.script.isLost();
  const Outcome run = scenario.run(writeWithRetry(command));
  EXPECT_EQ(run.result, "-1");
  EXPECT_EQ(run.all(), text(R"(
    Start writeWithRetry: | <data>
    gettimeofday 1000000.000000
    Start isConnected |
    accessory.isConnected 0
    End isConnected | -> 0
    Error writeWithRetry: | self.isConnected: 0
    End writeWithRetry: | <data>, -> -1
  )"));
}

TEST(RetryingWriter, FailsIfAWriteFails) {
  Scenario scenario = Scenario::in(lineMode);
  scenario.script.writeReturns(1, -1);
  const Outcome run = scenario.run(writeWithRetry(command));
  EXPECT_EQ(run.result, "-1");
  EXPECT_EQ(run.records("writeWithRetry:"), text(R"(
    Start | <data>
    Error | Fail to [self write:command]: <self>, <data>
    End | <data>, -> -1
  )"));
}

TEST(RetryingWriter, FailsIfTheLinkIsLostBetweenTwoAttempts) {
  Scenario scenario = takingInAttempts({4});
  scenario.script.isLost(0.01);
  const Outcome run = scenario.run(writeWithRetry(command));
  EXPECT_EQ(run.result, "-1");
  EXPECT_EQ(run.records("writeWithRetry:"), text(R"(
    Start | <data>
    Error | self.isConnected: 0
    End | <address>, -> -1
  )"));
}

/// The expected progress of a command. `total` is the number of bytes that all attempts have sent.
/// If `total` equals the size of `rest`, the command is done. If `total` is smaller, `rest` loses
/// its first `total` bytes, even if the last attempt has sent fewer. So some bytes may never be
/// sent. The comment on `writeWithRetry` says why the port keeps this behaviour.
struct Progress {
  Bytes rest;
  Bytes sent{};
  std::size_t total = 0;
  std::size_t writes = 0;
  std::size_t pauses = 0;
  bool isDone = false;

  /// Notes an attempt that sends `count` bytes, at most the size of `rest`.
  void attempt(std::size_t count) {
    const auto taken = rest.begin() + static_cast<std::ptrdiff_t>(count);
    sent.insert(sent.end(), rest.begin(), taken);
    writes += count > 0 ? 1 : 0;
    total += count;
    isDone = total == rest.size();
    if (total < rest.size()) {
      ++pauses;
      rest.erase(rest.begin(), rest.begin() + static_cast<std::ptrdiff_t>(total));
    }
  }
};

std::size_t pausesIn(const Outcome& run) {
  return static_cast<std::size_t>(
      std::count(run.lines.begin(), run.lines.end(), Line{About::Wait, "", "usleep 50000"}));
}

/// Lets the port make these attempts, and after them one that fails. Compares the port's output
/// with `expected`.
void check(const Bytes& whole, const std::vector<std::size_t>& counts, const Progress& expected) {
  Scenario scenario = Scenario::in(lineMode);
  scenario.logging = false;
  scenario.script.takesInAttempts(counts).writeReturns(expected.writes + 1, -1);
  const Outcome run = scenario.runOnPort(writeWithRetry(whole));
  SCOPED_TRACE(describe(scenario));
  ASSERT_EQ(run.result, expected.isDone ? std::to_string(expected.total) : "-1");
  ASSERT_EQ(run.sent(), expected.sent);
  ASSERT_EQ(pausesIn(run), expected.pauses);
}

/// Checks every way in which the next attempts can split the rest of the command.
void checkEverySplit(const Bytes& whole, const std::vector<std::size_t>& counts,
                     const Progress& progress) {
  constexpr std::size_t attempts = 4;
  if (progress.isDone || counts.size() == attempts) {
    check(whole, counts, progress);
    return;
  }
  for (std::size_t count = 0; count <= progress.rest.size(); ++count) {
    std::vector<std::size_t> further = counts;
    further.push_back(count);
    Progress next = progress;
    next.attempt(count);
    checkEverySplit(whole, further, next);
    if (testing::Test::HasFatalFailure()) {
      return;
    }
  }
}

TEST(RetryingWriter, SendsTheDocumentedBytesForEverySplitOfEveryCommand) {
  for (std::size_t length = 0; length <= 13; ++length) {
    Bytes whole(length);
    std::iota(whole.begin(), whole.end(), std::uint8_t{1});
    checkEverySplit(whole, {}, {.rest = whole});
  }
}

}  // namespace
}  // namespace quordalvane::test
