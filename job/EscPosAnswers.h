#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

#include "iphone-IOPort/PortC.h"
#include "job/ByteView.h"

namespace quordalvane {

/// The process ID of a job: four characters that the printer sends back when it reaches the end of
/// the job.
using JobId = std::array<std::uint8_t, 4>;

/// Returns whether the byte has the form of an answer to a real-time query.
inline bool isRealTimeStatus(std::uint8_t byte) {
  return (byte & escPosFixedMask) == escPosFixedBits;
}

/// Recognises the answers of an ESC/POS printer. The answers may arrive in any order and in any
/// number of pieces. An answer is recognised by its whole form, because a part of an answer may
/// look like another answer. The answers are, with their bytes in hexadecimal:
///
/// - real-time status: one byte b with (b AND 93) = 12;
/// - in-order status, sent after all earlier data was processed: one byte b with (b AND 90) = 00;
/// - automatic status, sent without a request: one byte with (b AND 93) = 10, and three bytes with
///   (b AND 90) = 00;
/// - process ID: the bytes 37 22, four characters, and 00;
/// - confirmation of a cleared buffer: the bytes 37 25 00;
/// - report of a mark: the bytes 1b 1d 03 01 00 00, the count, and 00;
/// - text: the byte 5f, printable characters, and 00;
/// - flow control: the byte 11 or 13, anywhere.
class EscPosAnswers {
 public:
  /// Processes the next bytes that arrived.
  void feed(ByteView bytes);

  /// Each of these functions returns the last answer of one kind; null if there was no such answer.
  /// @{
  std::optional<std::uint8_t> lastRealTimeStatus() const { return realTimeStatus_; }
  std::optional<std::uint8_t> lastReport() const { return report_; }
  /// @}

  /// Each of these functions returns how many answers of one kind have arrived.
  /// @{
  std::uint64_t realTimeCount() const { return realTimeCount_; }
  std::uint64_t inOrderCount() const { return inOrderCount_; }
  /// @}

  /// Returns whether the printer has sent an answer of a kind that can prove that a job was
  /// printed: a process ID, a report of a mark or an in-order status.
  bool isAnyProof() const { return !ids_.empty() || report_ || inOrderCount_ > 0; }

  /// Returns whether a byte has arrived that does not belong to any answer.
  bool isAnyOdd() const { return isAnyOdd_; }

  /// Returns whether the printer has sent this process ID.
  bool hasNamed(const JobId& id) const;

 private:
  // Each of these functions returns the length in bytes of the answer at the beginning of `bytes_`;
  // 0 if more bytes are needed to find the length.
  std::size_t take();
  std::size_t takeAnswer();
  std::size_t takeUnasked() const;
  std::size_t takeProcessId();
  std::size_t takeReport();
  std::size_t takeText() const;

  std::vector<std::uint8_t> bytes_;  // the bytes of an incomplete answer
  std::optional<std::uint8_t> realTimeStatus_;
  std::optional<std::uint8_t> report_;
  std::uint64_t realTimeCount_ = 0;
  std::uint64_t inOrderCount_ = 0;
  bool isAnyOdd_ = false;
  std::vector<JobId> ids_;
};

}  // namespace quordalvane
