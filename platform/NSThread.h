#pragma once

#include <functional>

#include <quordalvane/QuorExport.h>

namespace quordalvane {

/// The handle of one thread. Destroying the handle does not end the thread and does not wait for
/// it. Any thread may call the functions.
class QUOR_EXPORT NSThread {
 public:
  virtual ~NSThread() = default;

  /// Starts the thread. May be called once. Returns true if the system has created the thread; the
  /// thread's function is then called, and is destroyed when it has returned. Returns false if the
  /// system cannot create the thread; the function is then never called, and is destroyed before
  /// `start` returns.
  virtual bool start() = 0;

  /// Marks the thread as cancelled. This is only a request and does not end the thread.
  virtual void cancel() = 0;

  /// Runs `routine` on the thread's run loop, and returns true when the routine has finished.
  /// Returns false, without running `routine`, if the thread has not started or no longer runs its
  /// loop. If `routine` throws, `performAndWait` throws the same exception. A call on the thread
  /// itself runs `routine` directly.
  virtual bool performAndWait(std::function<void()> routine) = 0;
};

}  // namespace quordalvane
