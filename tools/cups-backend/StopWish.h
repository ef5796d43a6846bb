#pragma once

#include <functional>
#include <mutex>
#include <utility>

#include "job/PrintJob.h"

namespace quordalvane::cups {

/// The scheduler's request to end a job. A job is printed in parts (`JobBlock`), each by one
/// PrintJob. While no part is being printed, there is nothing to undo, so the process ends
/// immediately, even if it is waiting. May be used from any thread.
class StopWish {
 public:
  /// `leave` must end the process.
  explicit StopWish(std::function<void()> leave) : leave_(std::move(leave)) {}

  /// To be called if the job is no longer wanted. Cancels the PrintJob that runs now; if none runs,
  /// ends the process.
  void cancel();

  /// To be called if nobody reads the reports any more. If a PrintJob runs now, the process ends
  /// after it; otherwise the process ends immediately.
  void leaveWhenIdle();

  /// To be called before `job` runs. `job` must live until `endJob`.
  void beginJob(PrintJob& job);

  /// To be called after the PrintJob has ended and its outcome is recorded in the journal. May end
  /// the process.
  void endJob();

 private:
  std::mutex mutex_;  // guards the members below
  const std::function<void()> leave_;
  PrintJob* job_ = nullptr;
  bool isAlone_ = false;
};

}  // namespace quordalvane::cups
