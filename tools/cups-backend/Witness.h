#pragma once

#include <functional>

namespace quordalvane::cups {

/// A process that sees the end of the others.
///
/// If SIGKILL ends a back end, the scheduler believes that its job is done. But the scheduler ends
/// a job only after every process has closed the back end's standard error. So a witness holds it
/// open. If the other processes end without a word, the witness stops the queue before it closes
/// it. The job then remains, and a person sees why.
///
/// A witness is neither a child of this process nor in a group of the scheduler's, so that a signal
/// to those does not end it.
class Witness {
 public:
  /// Starts it. Throws `std::system_error` if the system has no process left. The witness calls
  /// `stopQueue` after a silent end.
  explicit Witness(const std::function<void()>& stopQueue);

  /// The job needs no witness any more: it is on paper, or this process ends with an exit code that
  /// is true. Any forked process may call this. Never fails.
  void dismiss() const;

 private:
  int words_;  // the end of a pipe that this process and its children hold
};

}  // namespace quordalvane::cups
