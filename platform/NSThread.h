#pragma once

#include <functional>

#include <quordalvane/QuorExport.h>

namespace quordalvane {

/// The handle of one thread. Releasing it neither waits for the thread nor ends it. All calls may
/// be made from any thread.
class QUOR_EXPORT NSThread {
 public:
  virtual ~NSThread() = default;

  /// Starts the thread; called once. False if the system cannot create it: the body then never
  /// runs, and is released before this returns. The body is released when it has ended.
  virtual bool start() = 0;

  /// Marks the thread as cancelled: a request, which ends nothing by itself.
  virtual void cancel() = 0;

  /// Runs `routine` on the thread's run loop and returns true when it has finished there. Returns
  /// false, without having run it, if the thread has not started or no longer runs its loop. An
  /// exception that leaves `routine` is thrown again here. Called on the thread itself, it runs
  /// `routine` directly.
  virtual bool performAndWait(std::function<void()> routine) = 0;
};

}  // namespace quordalvane
