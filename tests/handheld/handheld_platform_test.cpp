// The handheld platform on the framework's threads and run loops, with a stand-in for the accessory
// service.

#include "backends/handheld/HandheldPlatform.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <future>

#include "backends/handheld/FrameworkError.h"
#include "iphone-IOPort/ExternalAccessoryPort.h"
#include "tests/handheld/Accessories.h"

namespace quordalvane::test {
namespace {

using handheld::FrameworkError;
using handheld::HandheldPlatform;
using testing::ElementsAre;

double now(HandheldPlatform& platform) {
  return std::chrono::duration<double>(platform.clock().monotonic()).count();
}

/// A thread that runs its loop until it is stopped.
class TurningThread {
 public:
  explicit TurningThread(HandheldPlatform& platform)
      : platform_(platform), handle_(platform.makeThread([this] { turn(); })) {}
  ~TurningThread() { stop(); }

  NSThread& handle() { return *handle_; }

  void stop() {
    if (!isStopped_.exchange(true)) {
      ended_.get_future().wait();
    }
  }

  int slices() const { return slices_; }

 private:
  void turn() {
    while (!isStopped_) {
      platform_.currentRunLoop().runUntilDate(0.1);
      ++slices_;
    }
    ended_.set_value();
  }

  HandheldPlatform& platform_;
  std::atomic<bool> isStopped_ = false;
  std::atomic<int> slices_ = 0;
  std::promise<void> ended_;
  const std::shared_ptr<NSThread> handle_;
};

TEST(HandheldThread, RunsACallersRoutineBeforeTheCallReturns) {
  HandheldPlatform platform;
  TurningThread thread(platform);
  ASSERT_TRUE(thread.handle().start());
  std::thread::id ranOn;
  EXPECT_TRUE(thread.handle().performAndWait([&] { ranOn = std::this_thread::get_id(); }));
  EXPECT_TRUE(ranOn != std::thread::id());
  EXPECT_TRUE(ranOn != std::this_thread::get_id());
}

TEST(HandheldThread, RethrowsTheExceptionOfARoutineInTheCaller) {
  HandheldPlatform platform;
  TurningThread thread(platform);
  ASSERT_TRUE(thread.handle().start());
  EXPECT_THROW(thread.handle().performAndWait([] { throw std::out_of_range("carried"); }),
               std::out_of_range);
  EXPECT_TRUE(thread.handle().performAndWait([] {})) << "the loop continues";
}

TEST(HandheldThread, RunsARoutineDirectlyIfTheThreadCallsItself) {
  HandheldPlatform platform;
  TurningThread thread(platform);
  ASSERT_TRUE(thread.handle().start());
  bool hasRun = false;
  EXPECT_TRUE(thread.handle().performAndWait(
      [&] { EXPECT_TRUE(thread.handle().performAndWait([&] { hasRun = true; })); }));
  EXPECT_TRUE(hasRun);
}

TEST(HandheldThread, RefusesARoutineBeforeTheThreadStarts) {
  HandheldPlatform platform;
  const auto thread = platform.makeThread([] {});
  bool hasRun = false;
  EXPECT_FALSE(thread->performAndWait([&] { hasRun = true; }));
  EXPECT_FALSE(hasRun);
}

TEST(HandheldThread, RefusesOrRunsARoutineThatArrivesWhileTheThreadEnds) {
  HandheldPlatform platform;
  for (int i = 0; i < 200;
       ++i) {  // the thread may end at any moment while a routine is passed to it
    std::promise<void> ended;
    const auto thread = platform.makeThread([&] { ended.set_value(); });
    ASSERT_TRUE(thread->start());
    ended.get_future().wait();
    int runs = 0;
    const bool isDone = thread->performAndWait([&] { ++runs; });
    EXPECT_EQ(runs, isDone ? 1 : 0);
  }
}

TEST(HandheldThread, ReleasesItsFunctionWhenTheThreadEnds) {
  HandheldPlatform platform;
  auto held = std::make_shared<int>();
  const std::weak_ptr<int> watched = held;
  const auto thread = platform.makeThread([held = std::move(held)] {});
  ASSERT_TRUE(thread->start());
  const double start = now(platform);
  while (!watched.expired() && now(platform) - start < 10) {
    platform.clock().usleep(1000);
  }
  EXPECT_TRUE(watched.expired());
}

TEST(HandheldRunLoop, WaitsItsWholeTimeOnAThreadWithoutSources) {
  HandheldPlatform platform;
  std::thread([&] {
    const double start = now(platform);
    platform.currentRunLoop().runUntilDate(0.05);
    EXPECT_GE(now(platform) - start, 0.05);
  }).join();
}

TEST(HandheldRunLoop, WaitsIfThereIsNoRoutineToRun) {
  HandheldPlatform platform;
  TurningThread thread(platform);
  ASSERT_TRUE(thread.handle().start());
  platform.clock().usleep(300'000);
  thread.stop();
  EXPECT_LE(thread.slices(), 8);
}

TEST(HandheldDevice, ReturnsTheSystemVersionOfTheFramework) {
  HandheldPlatform platform;
  EXPECT_EQ(platform.currentDevice().systemVersion(), "12.5.7");
}

TEST(HandheldAccessory, ReturnsTheTextsThatTheServiceGives) {
  HandheldPlatform platform;
  plugIn({.name = "Küche", .serialNumber = "0042", .modelNumber = "XQ700", .connect = nullptr});
  const auto accessories = platform.sharedAccessoryManager().connectedAccessories();
  ASSERT_EQ(accessories.size(), 1U);
  EXPECT_EQ(accessories[0]->name(), "Küche");
  EXPECT_EQ(accessories[0]->serialNumber(), "0042");
  EXPECT_EQ(accessories[0]->modelNumber(), "XQ700");
  EXPECT_EQ(accessories[0]->manufacturer(), "quor dalvane");
  EXPECT_EQ(accessories[0]->connectionID(), 7U);
  EXPECT_EQ(accessories[0]->description(),
            "<accessory 7: Küche, model XQ700, serial 0042, maker quor dalvane>");
  EXPECT_THAT(accessories[0]->protocolStrings(), ElementsAre("com.quordalvane.receipt"));
  unplug();
  EXPECT_TRUE(platform.sharedAccessoryManager().connectedAccessories().empty());
}

TEST(HandheldAccessory, ReturnsNoSessionIfTheServiceRefusesTheConnection) {
  HandheldPlatform platform;
  plugIn({.connect = [] { return -1; }});
  const auto accessory = platform.sharedAccessoryManager().connectedAccessories().front();
  EXPECT_EQ(accessory->openSession("com.quordalvane.receipt"), nullptr);
  EXPECT_EQ(accessory->openSession("com.example.other"), nullptr);
  unplug();
}

TEST(ExceptionOfTheAccessoryService, IsThrownToTheCallerAsAnErrorWithItsText) {
  HandheldPlatform platform;
  letServiceRaise(true);
  try {
    platform.sharedAccessoryManager().connectedAccessories();
    ADD_FAILURE() << "nothing was thrown";
  } catch (const FrameworkError& error) {
    EXPECT_THAT(error.what(), testing::HasSubstr("the service is not there"));
  }
  letServiceRaise(false);
}

TEST(ExceptionOfTheAccessoryService, MakesTheOpenOfAPortFail) {
  const auto platform = std::make_shared<HandheldPlatform>();
  letServiceRaise(true);
  const auto port =
      ExternalAccessoryPort::initWithPortName("BT:", "", 10000, ZKEmulationESCPOS, platform);
  EXPECT_FALSE(port->open());
  letServiceRaise(false);
  port->close();
}

}  // namespace
}  // namespace quordalvane::test
