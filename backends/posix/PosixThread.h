#pragma once

#include <functional>
#include <memory>

#include "platform/NSThread.h"

namespace quordalvane::posix {

class ThreadRunLoop;

/// A detached thread, which ends by itself or with the process. The thread has no reference to this
/// handle, so its body may own the owner of the handle: there is no cycle of references once the
/// thread has started. An exception that leaves the body ends the process.
class PosixThread final : public NSThread {
 public:
  explicit PosixThread(std::function<void()> body);

  bool start() override;

  /// Has no effect, because the thread cannot ask whether it was cancelled.
  void cancel() override {}

  /// Accepts routines from `start` until the body has ended. A routine that was accepted always
  /// runs.
  bool performAndWait(std::function<void()> routine) override;

 private:
  std::function<void()> body_;  // empty once the thread has started
  const std::shared_ptr<ThreadRunLoop> loop_;
};

}  // namespace quordalvane::posix
