#pragma once

#include <functional>
#include <memory>

#include "platform/NSThread.h"

namespace quordalvane::posix {

class ThreadRunLoop;

/// A detached thread: it ends by itself, or with the process. It does not refer to its handle, so a
/// body that holds the handle's owner makes no cycle once the thread has started. An exception that
/// leaves the body ends the process.
class PosixThread final : public NSThread {
 public:
  explicit PosixThread(std::function<void()> body);

  bool start() override;

  /// Has no effect: the thread offers no way to ask whether it was cancelled.
  void cancel() override {}

  /// Routines are accepted from `start` until the body has ended; those that were accepted by then
  /// still run.
  bool performAndWait(std::function<void()> routine) override;

 private:
  std::function<void()> body_;  // empty once started
  const std::shared_ptr<ThreadRunLoop> loop_;
};

}  // namespace quordalvane::posix
