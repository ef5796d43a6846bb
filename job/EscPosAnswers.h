#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

#include "job/ByteView.h"

namespace quordalvane {

/// The four characters by which a printer names a job whose end it has reached.
using JobId = std::array<std::uint8_t, 4>;

/// Distinguishes the answers of an ESC/POS printer, in any order and cut into any pieces. Each is
/// known by its whole form, since the bytes of one may look like another:
///
/// - real-time status, one byte with (b AND 93) = 12;
/// - in-order status, one byte with (b AND 90) = 00;
/// - unasked status, four bytes: (b AND 93) = 10, then three with (b AND 90) = 00;
/// - process ID, 37 22, four characters, 00; drop confirmed, 37 25 00;
/// - report of a mark, 1b 1d 03 01 00 00 count 00;
/// - text, 5f, printable characters, 00;
/// - flow control, 11 and 13, anywhere.
class EscPosAnswers {
 public:
  /// Takes the next bytes that arrived.
  void feed(ByteView bytes);

  /// The newest answer of each kind; empty if there was none.
  /// @{
  std::optional<std::uint8_t> lastRealTimeStatus() const { return realTimeStatus_; }
  std::optional<std::uint8_t> lastReport() const { return report_; }
  /// @}

  /// How many of these answers there were.
  /// @{
  std::uint64_t realTimeCount() const { return realTimeCount_; }
  std::uint64_t inOrderCount() const { return inOrderCount_; }
  /// @}

  /// Whether there was an answer of a kind that proves a job: a process ID, a report or an in-order
  /// status.
  bool isAnyProof() const { return !ids_.empty() || report_ || inOrderCount_ > 0; }

  /// Whether there was a byte that belongs to no answer.
  bool isAnyOdd() const { return isAnyOdd_; }

  /// Whether the printer has named this process ID.
  bool hasNamed(const JobId& id) const;

 private:
  // Each returns how many bytes the answer at the beginning has: 0 if more must arrive before that
  // is known.
  std::size_t take();
  std::size_t takeAnswer();
  std::size_t takeUnasked() const;
  std::size_t takeProcessId();
  std::size_t takeReport();
  std::size_t takeText() const;

  std::vector<std::uint8_t> bytes_;  // of an answer that has begun
  std::optional<std::uint8_t> realTimeStatus_;
  std::optional<std::uint8_t> report_;
  std::uint64_t realTimeCount_ = 0;
  std::uint64_t inOrderCount_ = 0;
  bool isAnyOdd_ = false;
  std::vector<JobId> ids_;
};

}  // namespace quordalvane
