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

/// Draws and writes the receipts of jobs on a thread of its own, one after the other, so that
/// nobody waits for an answer of the printer meanwhile.
class ReceiptWriter {
 public:
  struct Job {
    JobReport report;
    simulator::Paper paper;
    bool apart = false;  ///< each piece of paper is a receipt
    std::size_t station = 0;
    bool isLookedAt = false;  ///< its receipts are drawn for those who look on
  };

  /// The line that reports a job, and the complaints about its files.
  struct Done {
    std::string line;
    std::vector<std::string> complaints;
    JobReport report;
    simulator::JobRecord record;
    std::size_t station = 0;
    std::vector<DrawnReceipt> receipts;  ///< if it is looked at
  };

  /// `folder` may be null: then nothing is written. It must outlive this. Throws std::system_error
  /// if the system has no thread or descriptor left.
  explicit ReceiptWriter(ReceiptFolder* folder);

  /// Lets the job under way be finished; those that wait are lost.
  ~ReceiptWriter();
  ReceiptWriter(const ReceiptWriter&) = delete;
  ReceiptWriter& operator=(const ReceiptWriter&) = delete;

  /// Takes a job. Waits only while the jobs that wait are together heavier than `mostWaiting`.
  void add(Job job);

  static constexpr std::size_t mostWaiting = std::size_t{16} << 20U;

  /// Becomes readable when a job is done.
  int descriptor() const { return done_; }

  /// The jobs that were done since the last call, in order. Does not wait.
  std::vector<Done> take();

  /// Waits until every job is done, and returns those that were not taken.
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
  std::size_t weight_ = 0;  // of those
  bool isWriting_ = false;
  bool ends_ = false;
  std::vector<Done> written_;
  std::thread thread_;  // last: it uses all of them
};

}  // namespace quordalvane::tool
