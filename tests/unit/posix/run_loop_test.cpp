#include <gtest/gtest.h>

#include <atomic>
#include <memory>
#include <thread>

#include "backends/posix/PosixClock.h"
#include "backends/posix/PosixThread.h"
#include "backends/posix/RunLoop.h"
#include "platform/NSStream.h"
#include "tests/support/SleepingThread.h"
#include "tests/unit/posix/SignalStorm.h"
#include "tests/unit/posix/Stopwatch.h"

namespace quordalvane::posix {
namespace {

using test::SleepingThread;

class RecordingStream : public NSStream {
 public:
  void setDelegate(std::weak_ptr<const void>) override {}
  void scheduleInRunLoop(NSRunLoop&, std::string_view) override {}
  void removeFromRunLoop(NSRunLoop&, std::string_view) override {}
  void open() override {}
  void close() override {}
  void waitUntilReady(double seconds) override { waited = seconds; }

  double waited = -1;
};

// Runs `body` on a thread of the platform, and returns when `body` has ended.
void onThread(const std::function<void()>& body) {
  std::atomic<bool> ended = false;
  PosixThread thread([&] {
    body();
    ended = true;
  });
  ASSERT_TRUE(thread.start());
  while (!ended) {
    std::this_thread::yield();
  }
  thread.performAndWait([] {});  // returns only after the body has ended
}

TEST(RunLoop, ASliceLastsItsWholeTimeOnTheMainThreadAndOnOtherThreads) {
  const auto slice = [] {
    const Stopwatch watch;
    currentRunLoop().runUntilDate(0.02);
    EXPECT_GE(watch.seconds(), 0.02);
    EXPECT_LT(watch.seconds(), 5);
  };
  slice();
  onThread(slice);
}

TEST(RunLoop, SignalsDoNotShortenATimeSliceOfTheLoop) {
  const SignalStorm storm;
  const Stopwatch watch;
  currentRunLoop().runUntilDate(0.05);
  EXPECT_GE(watch.seconds(), 0.05);
  EXPECT_LT(watch.seconds(), 5);
  EXPECT_GT(storm.strikes(), 0);
}

TEST(RunLoop, ASliceOfZeroOrNegativeTimeReturnsAtOnce) {
  const auto slices = [] {
    const Stopwatch watch;
    currentRunLoop().runUntilDate(0);
    currentRunLoop().runUntilDate(-10);
    EXPECT_LT(watch.seconds(), 5);
  };
  slices();
  onThread(slices);
}

TEST(RunLoop, WaitsForTheStreamDuringTheRemainingTimeOfTheLoop) {
  const auto slice = [] {
    RecordingStream stream;
    const Stopwatch watch;
    currentRunLoop().runUntilDate(30, stream);
    EXPECT_GT(stream.waited, 20);
    EXPECT_LE(stream.waited, 30);
    EXPECT_LT(watch.seconds(), 20);  // the stream was ready at once
  };
  slice();
  onThread(slice);
}

TEST(RunLoop, RunsRoutinesOfOtherThreadsBeforeItWaitsForTheStream) {
  bool ran = false;
  std::atomic<bool> carried = false;
  std::atomic<bool> turned = false;
  PosixThread thread([&] {
    while (!carried) {
      std::this_thread::yield();
    }
    // The test cannot see whether the routine has arrived, so it runs the loop until the routine
    // has run.
    while (!ran) {
      RecordingStream stream;
      currentRunLoop().runUntilDate(0, stream);
      EXPECT_EQ(stream.waited, 0);
    }
    turned = true;
  });
  ASSERT_TRUE(thread.start());
  carried = true;
  EXPECT_TRUE(thread.performAndWait([&] {
    EXPECT_FALSE(turned);
    ran = true;
  }));
  while (!turned) {
    std::this_thread::yield();
  }
}

TEST(RunLoop, ARoutineFromAnotherThreadInterruptsALongWait) {
  std::atomic<bool> stop = false;
  PosixThread thread([&] {
    while (!stop) {
      currentRunLoop().runUntilDate(0.5);
    }
  });
  ASSERT_TRUE(thread.start());
  const Stopwatch watch;
  for (int i = 0; i < 200; ++i) {
    EXPECT_TRUE(thread.performAndWait([] {}));
  }
  EXPECT_LT(watch.seconds(), 25);  // if no routine woke the loop, 200 calls would take 100 s
  stop = true;
  while (thread.performAndWait([] {})) {
  }
}

TEST(RunLoop, ARoutineThatArrivesAfterASliceRunsInTheNextSlice) {
  std::atomic<bool> secondRan = false;
  bool secondRanInFirstSlice = false;
  PosixThread thread([&] {
    currentRunLoop().runUntilDate(0.02);
    secondRanInFirstSlice = secondRan;
    while (!secondRan) {
      currentRunLoop().runUntilDate(0.02);
    }
  });
  ASSERT_TRUE(thread.start());
  std::unique_ptr<SleepingThread> second;
  EXPECT_TRUE(thread.performAndWait([&] {
    second = std::make_unique<SleepingThread>(
        [&] { EXPECT_TRUE(thread.performAndWait([&] { secondRan = true; })); });
    second->awaitSleep();  // the second routine waits until the first has run
    PosixClock().usleep(30'000);
  }));
  second->join();
  EXPECT_FALSE(secondRanInFirstSlice);
  while (thread.performAndWait([] {})) {
  }
}

TEST(RunLoop, WaitingRoutinesRunWhenAnotherRoutineRunsTheLoop) {
  std::atomic<bool> areWaiting = false;
  std::atomic<int> ran = 0;
  PosixThread thread([&] {
    while (!areWaiting) {
      std::this_thread::yield();
    }
    currentRunLoop().runUntilDate(0);
  });
  ASSERT_TRUE(thread.start());
  const auto routine = [&] {
    ++ran;
    currentRunLoop().runUntilDate(0);
  };
  SleepingThread one([&] { EXPECT_TRUE(thread.performAndWait(routine)); });
  SleepingThread other([&] { EXPECT_TRUE(thread.performAndWait(routine)); });
  one.awaitSleep();
  other.awaitSleep();
  areWaiting = true;
  one.join();
  other.join();
  EXPECT_EQ(ran, 2);
}

}  // namespace
}  // namespace quordalvane::posix
