#pragma once

#include <functional>

namespace quordalvane::cups {

/// A process that sees the end of the others.
///
/// The scheduler takes a back end that SIGKILL ended for one that has done its job. But it ends a
/// job only when nobody holds the back end's standard error any more: a witness holds it, and if
/// the others are gone without a word, it stops the queue before it lets go. The job then stays,
/// and a person sees why.
///
/// A witness is no child of this process and of no group of the scheduler's, so that what ends
/// those does not end it.
class Witness {
 public:
  /// Starts it. Throws `std::system_error` if the system has no process left. `stopQueue` is what
  /// the witness does at a silent end.
  explicit Witness(const std::function<void()>& stopQueue);

  /// The job needs no witness any more: it is on paper, or this process ends with an exit code that
  /// is true. Any process that was forked off may say so. Never fails.
  void dismiss() const;

 private:
  int words_;  // the end of a pipe that this process and its children hold
};

}  // namespace quordalvane::cups
