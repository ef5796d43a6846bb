#pragma once

#include <functional>

namespace quordalvane::cups {

/// A process that notices how the back end's processes end.
///
/// If SIGKILL ends a back end, the scheduler believes that its job is done. But the scheduler ends
/// a job only after every process has closed the back end's standard error, and the witness keeps
/// standard error open. If the other processes end without calling `dismiss`, the witness first
/// stops the queue and then closes standard error. So the job is kept, and a person sees the
/// reason.
///
/// A signal to the back end's children or to the scheduler's process group does not reach the
/// witness: it belongs to neither.
class Witness {
 public:
  /// Starts the witness, which calls `stopQueue` if all processes end without `dismiss`. Throws
  /// `std::system_error` if the system cannot start a process.
  explicit Witness(const std::function<void()>& stopQueue);

  /// Ends the witness's duty: the job is on paper, or this process ends with an exit code that is
  /// true. Any forked process may call this. Never fails.
  void dismiss() const;

 private:
  int words_;  // the write end of a pipe that this process and its children hold open
};

}  // namespace quordalvane::cups
