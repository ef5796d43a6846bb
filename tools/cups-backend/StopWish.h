#pragma once

#include <functional>
#include <mutex>
#include <utility>

#include "job/PrintJob.h"

namespace quordalvane::cups {

/// The scheduler's request to end a job. While no block of the job is being printed, there is
/// nothing to undo, so the process ends immediately, even if it is waiting. May be used from any
/// thread.
class StopWish {
 public:
  /// `leave` must end the process.
  explicit StopWish(std::function<void()> leave) : leave_(std::move(leave)) {}

  /// Ends a job that is no longer wanted: cancels the block that is being printed, or ends the
  /// process.
  void cancel();

  /// To be called if nobody reads the reports any more. If a block is being printed, the process
  /// ends after this block; otherwise it ends immediately.
  void leaveWhenIdle();

  /// Marks `job` as being printed. `job` must live until `endJob`.
  void beginJob(PrintJob& job);

  /// Marks the job as ended. Before this call, the caller must record the outcome of the job in the
  /// journal.
  void endJob();

 private:
  std::mutex mutex_;  // guards the members below
  const std::function<void()> leave_;
  PrintJob* job_ = nullptr;
  bool isAlone_ = false;
};

}  // namespace quordalvane::cups
