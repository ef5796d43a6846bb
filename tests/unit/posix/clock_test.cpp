#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <ctime>

#include "backends/posix/PosixClock.h"
#include "tests/unit/posix/SignalStorm.h"
#include "tests/unit/posix/Stopwatch.h"

namespace quordalvane::posix {
namespace {

TEST(PosixClock, ReturnsTheTimeOfDay) {
  const std::time_t before = std::time(nullptr);
  const TimeValue now = PosixClock().gettimeofday();
  EXPECT_GE(now.tv_sec + 1, before);  // std::time may differ from the clock by a moment
  EXPECT_LE(now.tv_sec, std::time(nullptr) + 1);
  EXPECT_GE(now.tv_usec, 0);
  EXPECT_LT(now.tv_usec, 1'000'000);
}

TEST(PosixClock, MonotonicTimeGrowsDuringASleep) {
  PosixClock clock;
  const auto before = clock.monotonic();
  clock.usleep(1000);
  EXPECT_GE(clock.monotonic() - before, std::chrono::microseconds(1000));
}

TEST(PosixClock, SleepsAtLeastAsLongAsRequested) {
  const Stopwatch watch;
  PosixClock().usleep(20'000);
  EXPECT_GE(watch.seconds(), 0.020);
  EXPECT_LT(watch.seconds(), 5);
}

TEST(PosixClock, AThousandSleepsOfAMicrosecondLastAMillisecond) {
  constexpr int sleeps = 1000;
  PosixClock clock;
  const Stopwatch watch;
  for (int i = 0; i < sleeps; ++i) {
    clock.select(1);
  }
  EXPECT_GE(watch.seconds(), 1e-6 * sleeps);
}

TEST(PosixClock, ASleepOfMoreThanASecondBySelectTakesItsWholeTime) {
  const Stopwatch watch;
  PosixClock().select(1'000'001);
  EXPECT_GE(watch.seconds(), 1.000'001);
  EXPECT_LT(watch.seconds(), 5);
}

TEST(PosixClock, SleepsOfZeroOrNegativeTimeReturnAtOnce) {
  const Stopwatch watch;
  PosixClock clock;
  clock.usleep(0);
  clock.select(0);
  clock.select(-1);
  clock.select(INT32_MIN);
  EXPECT_LT(watch.seconds(), 5);
}

TEST(PosixClock, SignalsDoNotShortenASleep) {
  const SignalStorm storm;
  const Stopwatch watch;
  PosixClock clock;
  clock.usleep(50'000);
  EXPECT_GE(watch.seconds(), 0.050);
  clock.select(50'000);
  EXPECT_GE(watch.seconds(), 0.100);
  EXPECT_LT(watch.seconds(), 5);
  EXPECT_GT(storm.strikes(), 0);
}

TEST(Deadline, IsTheCurrentTimeIfTheSecondsAreZeroNegativeOrInvalid) {
  for (const double seconds : {0.0, -1.0, -1e300, static_cast<double>(NAN)}) {
    const SteadyTime before = SteadyClock::now();
    const SteadyTime deadline = deadlineIn(seconds);
    EXPECT_GE(deadline, before);
    EXPECT_LE(deadline, SteadyClock::now());
  }
}

TEST(Deadline, IsAtMostAYearAhead) {
  for (const double seconds : {1e10, 1e300, static_cast<double>(INFINITY)}) {
    const SteadyTime before = SteadyClock::now();
    const SteadyTime deadline = deadlineIn(seconds);
    EXPECT_GE(deadline, before + std::chrono::hours(24 * 365));
    EXPECT_LT(deadline, before + std::chrono::hours(24 * 366));
  }
}

}  // namespace
}  // namespace quordalvane::posix
