#pragma once

#include <atomic>
#include <chrono>
#include <cstdint>
#include <mutex>
#include <span>
#include <thread>
#include <vector>

#include "bench/Cores.h"

namespace quordalvane::bench {

/// A printer's end of one connection that prints at once, or after a while, and confirms its print.
/// It runs until the other side ends the connection, and is waited for at the end: it must outlive
/// that side.
class ReceiptPrinter {
 public:
  using Instant = std::chrono::steady_clock::time_point;

  /// By which it confirms a job; a printer that counts marks (17) is in line mode.
  enum class Confirms { Count, Report, ProcessId, InOrder };

  /// The bytes that it received up to an answer, and the answer, which the last turn of a job may
  /// lack.
  struct Turn {
    std::vector<std::uint8_t> heard;
    std::vector<std::uint8_t> answer;
  };

  ReceiptPrinter(int descriptor, Core core, Confirms confirms,
                 std::chrono::milliseconds printingTime = {});
  ~ReceiptPrinter();
  ReceiptPrinter(const ReceiptPrinter&) = delete;
  ReceiptPrinter& operator=(const ReceiptPrinter&) = delete;

  /// Begins the record of a job anew.
  void forget();

  /// The bytes received and the answers since then.
  std::vector<Turn> turns() const;

  /// When the first byte of a receipt was heard, and when the printer was first done with the job.
  /// @{
  Instant heardDataAt() const { return heardDataAt_; }
  Instant confirmedAt() const { return confirmedAt_; }
  /// @}

 private:
  void run();
  void hear(std::uint8_t byte);
  bool endsWith(std::initializer_list<int> command) const;
  void answer(std::span<const std::uint8_t> bytes);
  void confirm(std::vector<std::uint8_t> sign);
  void signWhenPrinted();
  std::vector<std::uint8_t> status() const;

  const int descriptor_;
  const Confirms confirms_;
  const std::chrono::milliseconds printingTime_;
  std::vector<std::uint8_t> last_;  // the latest bytes, as far as a command can reach back
  std::vector<std::uint8_t> sign_;  // to be given when the job is printed
  std::uint8_t marks_ = 0;          // to be counted when the job is printed
  std::uint8_t counter_ = 0;
  std::atomic<Instant> printedAt_ = Instant::max();
  std::atomic<Instant> heardDataAt_ = Instant();
  std::atomic<Instant> confirmedAt_ = Instant();
  mutable std::mutex mutex_;  // guards turns_
  std::vector<Turn> turns_;
  std::thread thread_;
};

/// The first byte of the receipts that are printed here; no command has it.
inline constexpr std::uint8_t firstOfReceipt = 'R';

}  // namespace quordalvane::bench
