#pragma once

#include <condition_variable>
#include <deque>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "simulator/Paper.h"
#include "tools/quorport/simulate/DrawnReceipt.h"
#include "tools/quorport/simulate/JobReport.h"
#include "tools/quorport/simulate/ReceiptFolder.h"

namespace quordalvane::tool {

/// Draws and writes the receipts of jobs, one after the other, on a thread of its own, so that the
/// printers' answers are not delayed.
class ReceiptWriter {
 public:
  struct Job {
    JobReport report;
    simulator::Paper paper;
    bool apart = false;  ///< each piece of paper is a receipt of its own
    std::size_t station = 0;
    bool isLookedAt = false;  ///< true if the receipts must be drawn for browsers
  };

  /// The report of a job as a line, and the errors about the job's files.
  struct Done {
    std::string line;
    std::vector<std::string> complaints;
    JobReport report;
    simulator::JobRecord record;
    std::size_t station = 0;
    std::vector<DrawnReceipt> receipts;  ///< drawn only if `isLookedAt`
  };

  /// Writes no files if `folder` is null. `folder` must outlive this object. Throws
  /// std::system_error if the system has no thread or descriptor left.
  explicit ReceiptWriter(ReceiptFolder* folder);

  /// Finishes the current job; the waiting jobs are lost.
  ~ReceiptWriter();
  ReceiptWriter(const ReceiptWriter&) = delete;
  ReceiptWriter& operator=(const ReceiptWriter&) = delete;

  /// Adds a job. Blocks only while the waiting jobs together are larger than `mostWaiting`.
  void add(Job job);

  static constexpr std::size_t mostWaiting = std::size_t{16} << 20U;

  /// Returns the descriptor that becomes readable when a job is done.
  int descriptor() const { return done_; }

  /// Returns the jobs that were completed since the last call, in order. Does not wait.
  std::vector<Done> take();

  /// Waits until all jobs are completed, and returns those that `take` has not returned.
  std::vector<Done> finish();

 private:
  void work();
  Done write(Job job);
  void keep(Job& job, const std::vector<simulator::Paper>& papers, Done& done);

  ReceiptFolder* const folder_;
  const int done_;
  std::mutex mutex_;
  std::condition_variable changed_;
  std::deque<Job> waiting_;
  std::size_t weight_ = 0;  // the sum of the waiting jobs' weights
  bool isWriting_ = false;
  bool ends_ = false;
  std::vector<Done> written_;
  std::thread thread_;  // the last member, because it uses all others
};

}  // namespace quordalvane::tool
