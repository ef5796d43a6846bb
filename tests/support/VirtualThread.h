#pragma once

#include <deque>
#include <functional>
#include <memory>
#include <mutex>

#include "platform/NSRunLoop.h"
#include "platform/NSThread.h"
#include "tests/support/Scheduler.h"

namespace quordalvane::test {

/// The run loop of one thread under virtual time.
class VirtualRunLoop : public NSRunLoop {
 public:
  explicit VirtualRunLoop(Scheduler& scheduler) : scheduler_(scheduler) {}

  void runUntilDate(double seconds) override;
  void runUntilDate(double seconds, NSStream& awaited) override;

  /// Adds a routine and returns true. If the loop is closed, adds nothing and returns false.
  bool post(std::function<void()> routine);

  /// Runs the routines that still wait, and closes the loop when there are none.
  void drainAndClose();

 private:
  bool runOne();

  Scheduler& scheduler_;
  std::mutex mutex_;
  std::deque<std::function<void()>> routines_;
  bool closed_ = false;
};

/// A thread that takes turns in virtual time.
class VirtualThread : public NSThread {
 public:
  VirtualThread(Scheduler& scheduler, std::function<void()> body);

  bool start() override;
  void cancel() override {}

  /// Works as NSThread declares. The caller must be a thread of the scheduler; a call on any other
  /// thread throws std::logic_error.
  bool performAndWait(std::function<void()> routine) override;

 private:
  Scheduler& scheduler_;
  std::function<void()> body_;
  const std::shared_ptr<VirtualRunLoop> loop_;
  Scheduler::Thread* thread_ = nullptr;
};

/// Returns the run loop of the calling thread for this scheduler. Makes the loop if the thread has
/// none yet.
VirtualRunLoop& currentVirtualRunLoop(Scheduler& scheduler);

}  // namespace quordalvane::test
