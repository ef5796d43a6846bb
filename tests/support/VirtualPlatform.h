#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <random>
#include <string>
#include <vector>

#include "platform/Platform.h"
#include "tests/support/Scheduler.h"

namespace quordalvane::test {

/// Virtual time as a Clock. The wall clock starts at `epoch` and may be stepped.
class VirtualClock : public Clock {
 public:
  /// 2024-01-01 00:00:00 UTC, so that all runs have the same times.
  static constexpr std::int64_t epoch = 1704067200;

  TimeValue gettimeofday() override;
  std::chrono::nanoseconds monotonic() override { return scheduler_.now(); }
  void usleep(std::uint64_t microseconds) override;
  void select(std::int32_t microseconds) override;

  /// Steps the wall clock by `difference`, back or forward; monotonic time does not change.
  void stepWallClock(std::chrono::microseconds difference) { stepped_ += difference.count(); }

  /// Runs `event` when the clock has reached `instant`, counted from its start, even in the middle
  /// of a wait. The event must not wait itself.
  void at(Instant instant, std::function<void()> event) {
    scheduler_.at(instant, std::move(event));
  }

  Scheduler& scheduler() { return scheduler_; }

 private:
  Scheduler scheduler_;
  std::atomic<std::int64_t> stepped_ = 0;  // microseconds
};

/// A platform in virtual time. The time advances only during a wait: a sleep, a run of a run loop,
/// or the wait for a stream. So the same calls always give the same run. The thread that makes the
/// platform runs first; `makeThread` makes all other threads of the platform. Any other thread may
/// read the state of the platform, but must not wait.
class VirtualPlatform : public Platform {
 public:
  VirtualPlatform();
  ~VirtualPlatform() override;

  /// Attaches a further accessory, after those that are attached already.
  void attach(std::shared_ptr<EAAccessory> accessory);

  /// Removes all accessories.
  void detachAll();

  /// Whether the thread that made the platform is the application's main thread; at first it is
  /// not, so that ports need no thread of their own.
  void setMainThread(bool isMain) { constructedOnMain_ = isMain; }

  /// The version of `currentDevice`; "9.0" at first.
  void setSystemVersion(std::string version);

  VirtualClock& virtualClock() { return clock_; }

  EAAccessoryManager& sharedAccessoryManager() override;
  UIDevice& currentDevice() override;
  Clock& clock() override { return clock_; }
  NSRunLoop& currentRunLoop() override;
  std::shared_ptr<NSThread> makeThread(std::function<void()> body) override;
  bool isMainThread() override;
  void ignoreSigPipe() override;

  /// The next random number; the seed is always the same, so that all runs are the same.
  std::uint32_t randomNumber() override { return static_cast<std::uint32_t>(chance_()); }

 private:
  class Manager;
  class Device;

  VirtualClock clock_;
  std::mt19937 chance_;
  Scheduler::Thread* const firstThread_;
  std::atomic<bool> constructedOnMain_ = false;
  const std::unique_ptr<Manager> manager_;
  const std::unique_ptr<Device> device_;
};

}  // namespace quordalvane::test
