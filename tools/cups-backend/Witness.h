#pragma once

#include <functional>

namespace quordalvane::cups {

/// A process that notices how the back end and its children end.
///
/// If SIGKILL ends a back end, the scheduler believes that the back end's job is done. But the
/// scheduler ends a job only after every process has closed the back end's standard error, and the
/// witness keeps standard error open. If the back end and its children end without a call of
/// `dismiss`, the witness first stops the queue and then closes standard error. The job is thus
/// kept, and a person sees the reason.
///
/// The witness is neither a child of the back end nor a member of the scheduler's process group. A
/// signal to the children or to the group therefore does not reach the witness.
class Witness {
 public:
  /// Starts the witness. The witness calls `stopQueue` if this process and its children have all
  /// ended, and none of them has called `dismiss`. Throws `std::system_error` if the system cannot
  /// start a process.
  explicit Witness(const std::function<void()>& stopQueue);

  /// After this call, the witness does not stop the queue, no matter how this process and its
  /// children end. To be called when the job is on paper, or before this process ends with the
  /// correct exit code. A child of this process may call this function. Never fails.
  void dismiss() const;

 private:
  int words_;  // the write end of a pipe that this process and its children hold open
};

}  // namespace quordalvane::cups
