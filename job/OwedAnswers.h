#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "iphone-IOPort/enum.h"
#include "job/ByteView.h"
#include "job/EscPosAnswers.h"

namespace quordalvane {

/// Counts the answers that a printer owes: one to each status request that was sent, less those
/// that have arrived. A printer answers in the order in which it was asked, so that counting alone
/// shows to which question an answer belongs.
class OwedAnswers {
 public:
  /// Counts the requests and answers of line mode, or otherwise those of ESC/POS.
  explicit OwedAnswers(ZKEmulation emulation) : isLineMode_(emulation == ZKEmulationQuorLine) {}

  /// Takes the next bytes that were sent, and the next that arrived, however they are cut into
  /// pieces.
  /// @{
  void written(ByteView bytes);
  void read(ByteView bytes);
  /// @}

  /// True if an answer is still owed.
  bool isAnyOwed() const { return owed_ > 0; }

  /// Forgets the unasked bytes: the rest of an earlier exchange.
  void forgetSurplus() { owed_ = owed_ > 0 ? owed_ : 0; }

  /// True if bytes arrived that are no answer of this kind of printer.
  bool isAnyOdd() const { return isAnyOdd_; }

  /// The last whole answer, a status block or a real-time status byte; empty before the first.
  const std::vector<std::uint8_t>& last() const { return last_; }

  /// All answers of ESC/POS, of whatever kind.
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
  std::uint32_t lastWritten_ = 0;    // the last bytes that were sent, the newest lowest
  std::vector<std::uint8_t> block_;  // a status block that has begun
  std::vector<std::uint8_t> last_;
};

}  // namespace quordalvane
