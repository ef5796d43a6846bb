#pragma once

#include <condition_variable>
#include <deque>
#include <exception>
#include <functional>
#include <mutex>

#include "platform/NSRunLoop.h"

namespace quordalvane::posix {

/// The run loop of a thread that this platform started: the place where other threads leave
/// routines for it.
class ThreadRunLoop final : public NSRunLoop {
 public:
  void runUntilDate(double seconds) override;

  /// Routines that are carried here while the stream is being awaited run at the next turn.
  void runUntilDate(double seconds, NSStream& awaited) override;

  /// Lets routines in, before the thread is started.
  void open();

  /// Runs the routines that wait and refuses later ones. For the loop's thread, at its end.
  void finish();

  /// Refuses the routines that wait and all later ones, if there will be no thread.
  void refuse();

  /// Runs `routine` on the loop's thread, as `NSThread::performAndWait` states.
  bool performAndWait(const std::function<void()>& routine);

  /// Makes this the loop that the calling thread's `currentRunLoop()` returns, until `detach`.
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

/// The calling thread's loop. A thread that this platform did not start has no handle through which
/// a routine could reach it, so its loop only lets time pass.
NSRunLoop& currentRunLoop();

}  // namespace quordalvane::posix
