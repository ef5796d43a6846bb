#pragma once

#include <condition_variable>
#include <deque>
#include <exception>
#include <functional>
#include <mutex>

#include "platform/NSRunLoop.h"

namespace quordalvane::posix {

/// The run loop of a thread that this platform has started. Other threads pass routines to it.
class ThreadRunLoop final : public NSRunLoop {
 public:
  void runUntilDate(double seconds) override;

  /// Runs the routines that have arrived, and then waits for the stream. Routines that arrive
  /// during this wait are run by the next call.
  void runUntilDate(double seconds, NSStream& awaited) override;

  /// Begins to accept routines. Called before the thread is started.
  void open();

  /// Runs the routines that have arrived, and refuses all later routines. The loop's thread calls
  /// `finish` at its end.
  void finish();

  /// Refuses the routines that have arrived, and all later routines. Called if the thread cannot be
  /// started.
  void refuse();

  /// Runs `routine` on the loop's thread, as described at `NSThread::performAndWait`.
  bool performAndWait(const std::function<void()>& routine);

  /// Makes `currentRunLoop()` return this loop on the calling thread, until `detach`.
  void attach();
  void detach();

 private:
  struct Carried;

  void runCarried(std::unique_lock<std::mutex>& lock);

  std::mutex mutex_;  // guards the members below
  std::condition_variable arrived_;
  std::condition_variable settled_;
  std::deque<Carried*> waiting_;
  bool open_ = false;
};

/// Returns the run loop of the calling thread. If `PosixPlatform` has not started this thread, the
/// loop can only wait: other threads cannot pass routines to it.
NSRunLoop& currentRunLoop();

}  // namespace quordalvane::posix
