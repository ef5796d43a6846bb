#pragma once

#include <functional>
#include <memory>

#include "platform/NSThread.h"

namespace quordalvane::posix {

class ThreadRunLoop;

/// A detached thread, which ends by itself or with the process. This handle owns the thread's body
/// only until `start`, which moves the body to the thread. So the body may own an object that owns
/// the handle: after the start, the body and the handle do not keep each other alive. An exception
/// that leaves the body ends the process.
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
