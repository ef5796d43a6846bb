#pragma once

#include <functional>
#include <memory>

#include "platform/NSThread.h"

namespace quordalvane::posix {

class ThreadRunLoop;

/// A detached thread, which ends by itself or with the process. The thread has no reference to this
/// handle. So the thread's body may own the object that owns the handle, without a cycle of
/// references after the start. An exception that leaves the body ends the process.
class PosixThread final : public NSThread {
 public:
  explicit PosixThread(std::function<void()> body);

  bool start() override;

  /// Has no effect, because the thread cannot ask whether it was cancelled.
  void cancel() override {}

  /// Routines are accepted from `start` until the body has ended. An accepted routine always runs.
  bool performAndWait(std::function<void()> routine) override;

 private:
  std::function<void()> body_;  // empty after the start
  const std::shared_ptr<ThreadRunLoop> loop_;
};

}  // namespace quordalvane::posix
