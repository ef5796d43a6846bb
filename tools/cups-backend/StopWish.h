#pragma once

#include <functional>
#include <mutex>
#include <utility>

#include "job/PrintJob.h"

namespace quordalvane::cups {

/// The scheduler's wish that a job ends, from its arrival to its effect. While nothing of the job
/// is under way there is nothing to undo, and the process leaves at once, whatever it waits for.
/// Any thread.
class StopWish {
 public:
  /// `leave` must end the process.
  explicit StopWish(std::function<void()> leave) : leave_(std::move(leave)) {}

  /// The job is not wanted any more: one that runs is cut off.
  void cancel();

  /// Nobody listens any more: a job that runs is printed to its end, and nothing after it.
  void leaveWhenIdle();

  /// From now on `job` runs; it must live until `endJob`.
  void beginJob(PrintJob& job);

  /// It has ended, and its outcome is in the journal.
  void endJob();

 private:
  std::mutex mutex_;  // guards the members below
  const std::function<void()> leave_;
  PrintJob* job_ = nullptr;
  bool isAlone_ = false;
};

}  // namespace quordalvane::cups
