#pragma once

#include <functional>

namespace quordalvane::cups {

/// A process that notices how the back end's processes end.
///
/// If SIGKILL ends a back end, the scheduler believes that its job is done. But the scheduler ends
/// a job only after every process has closed the back end's standard error, and the witness keeps
/// standard error open. If the other processes end without calling `dismiss`, the witness first
/// stops the queue and then closes standard error. The job is thus kept, and a person sees the
/// reason.
///
/// The witness does not belong to the back end's children or to the scheduler's process group, so a
/// signal to these does not reach it.
class Witness {
 public:
  /// Starts the witness. The witness calls `stopQueue` if this process and its children have all
  /// ended, and none of them has called `dismiss`. Throws `std::system_error` if the system cannot
  /// start a process.
  explicit Witness(const std::function<void()>& stopQueue);

  /// From now on, the witness does not stop the queue, however the processes end. To be called when
  /// the job is on paper, or before this process ends with the correct exit code. A child of this
  /// process may call this function. Never fails.
  void dismiss() const;

 private:
  int words_;  // the write end of a pipe that this process and its children hold open
};

}  // namespace quordalvane::cups
