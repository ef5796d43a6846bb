#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "iphone-IOPort/enum.h"
#include "job/ByteView.h"
#include "job/EscPosAnswers.h"

namespace quordalvane {

/// Counts the answers that are still expected: the status requests that were sent minus the answers
/// that have arrived. A printer answers requests in order, so the count shows to which request an
/// answer belongs.
class OwedAnswers {
 public:
  /// Counts the requests and answers of line mode if `emulation` is line mode, otherwise the
  /// requests and answers of ESC/POS.
  explicit OwedAnswers(ZKEmulation emulation) : isLineMode_(emulation == ZKEmulationQuorLine) {}

  /// Process the next bytes that were sent, and the next bytes that arrived. Requests and answers
  /// may be split at any place.
  /// @{
  void written(ByteView bytes);
  void read(ByteView bytes);
  /// @}

  /// Returns true if an answer is still expected.
  bool isAnyOwed() const { return owed_ > 0; }

  /// Forgets answers that were not requested: they are left over from an earlier exchange.
  void forgetSurplus() { owed_ = owed_ > 0 ? owed_ : 0; }

  /// Returns true if bytes arrived that cannot be an answer in this emulation.
  bool isAnyOdd() const { return isAnyOdd_; }

  /// Returns the last complete answer, a status block or a real-time status byte; empty if there
  /// was no answer.
  const std::vector<std::uint8_t>& last() const { return last_; }

  /// Returns the ESC/POS answers of all kinds.
  const EscPosAnswers& escPos() const { return escPos_; }

 private:
  bool isRequestEnd() const;
  void readLineMode(std::uint8_t byte);
  void readESCPOS(std::uint8_t byte);
  void take(const std::vector<std::uint8_t>& answer);

  const bool isLineMode_;
  EscPosAnswers escPos_;
  bool isAnyOdd_ = false;
  std::int64_t owed_ = 0;
  std::uint32_t lastWritten_ =
      0;  // the last three bytes that were sent, the newest in the lowest byte
  std::vector<std::uint8_t> block_;  // an incomplete status block
  std::vector<std::uint8_t> last_;
};

}  // namespace quordalvane
