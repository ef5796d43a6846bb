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

  /// Takes a routine; if the loop is closed, returns false and does not take it.
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

  /// Keeps the promise of NSThread for threads that take turns in virtual time; throws
  /// std::logic_error on any other thread.
  bool performAndWait(std::function<void()> routine) override;

 private:
  Scheduler& scheduler_;
  std::function<void()> body_;
  const std::shared_ptr<VirtualRunLoop> loop_;
  Scheduler::Thread* thread_ = nullptr;
};

/// The run loop of the calling thread, which is made when it is first needed.
VirtualRunLoop& currentVirtualRunLoop(Scheduler& scheduler);

}  // namespace quordalvane::test
