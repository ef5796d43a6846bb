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

/// The printer's side of one connection, on a thread of its own. This printer prints at once, or
/// after a delay, and confirms each job. The thread runs until the other side closes the
/// connection. The destructor waits for the thread, so the other side must be closed before the
/// printer is destroyed.
class ReceiptPrinter {
 public:
  using Instant = std::chrono::steady_clock::time_point;

  /// How the printer confirms a job. Only with `Count` is the printer in line mode: it counts each
  /// mark (a byte 0x17) as soon as all data before the mark is printed, and its status contains
  /// this count.
  enum class Confirms { Count, Report, ProcessId, InOrder };

  /// The bytes that the printer received before one of its answers, and this answer. The last turn
  /// of a job may have no answer.
  struct Turn {
    std::vector<std::uint8_t> heard;
    std::vector<std::uint8_t> answer;
  };

  ReceiptPrinter(int descriptor, Core core, Confirms confirms,
                 std::chrono::milliseconds printingTime = {});
  ~ReceiptPrinter();
  ReceiptPrinter(const ReceiptPrinter&) = delete;
  ReceiptPrinter& operator=(const ReceiptPrinter&) = delete;

  /// Begins the record of a new job.
  void forget();

  /// Returns the bytes that the printer received, and its answers, since the last `forget`.
  std::vector<Turn> turns() const;

  /// Returns the time at which the first byte of the last receipt arrived.
  Instant heardDataAt() const { return heardDataAt_; }

  /// Returns the time at which the printer first confirmed the last receipt.
  Instant confirmedAt() const { return confirmedAt_; }

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
  std::vector<std::uint8_t> last_;  // the last received bytes, enough for the longest command
  std::vector<std::uint8_t> sign_;  // the confirmation that is sent when the job is printed
  std::uint8_t marks_ = 0;          // received marks, which are counted after printing
  std::uint8_t counter_ = 0;
  std::atomic<Instant> printedAt_ = Instant::max();
  std::atomic<Instant> heardDataAt_ = Instant();
  std::atomic<Instant> confirmedAt_ = Instant();
  mutable std::mutex mutex_;  // guards turns_
  std::vector<Turn> turns_;
  std::thread thread_;
};

/// The first byte of the receipts that are printed here; no command contains it.
inline constexpr std::uint8_t firstOfReceipt = 'R';

}  // namespace quordalvane::bench
