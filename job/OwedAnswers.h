#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "iphone-IOPort/enum.h"

namespace quordalvane {

/// Counts what a printer owes: an answer to each status request that went out, less those that have
/// come. A printer answers in the order in which it was asked, so that an answer can be told from
/// one to an earlier question by counting alone.
class OwedAnswers {
 public:
  /// Counts by the requests and answers of line mode, or else by those of ESC/POS.
  explicit OwedAnswers(ZKEmulation emulation) : isLineMode_(emulation == ZKEmulationQuorLine) {}

  /// Takes the next bytes that went out, and the next that came; however they are cut into pieces.
  /// @{
  void written(std::span<const std::uint8_t> bytes);
  void read(std::span<const std::uint8_t> bytes);
  /// @}

  /// True if an answer is still to come.
  bool isAnyOwed() const { return owed_ > 0; }

  /// Forgets what came unasked: the rest of an earlier exchange.
  void forgetSurplus() { owed_ = owed_ > 0 ? owed_ : 0; }

  /// True if something came that is no answer of this kind of printer.
  bool isAnyOdd() const { return isAnyOdd_; }

  /// The last whole answer, a status block or a real-time status byte; empty while there was none.
  const std::vector<std::uint8_t>& last() const { return last_; }

 private:
  bool isRequestEnd() const;
  void readLineMode(std::uint8_t byte);
  void readESCPOS(std::uint8_t byte);
  void take(const std::vector<std::uint8_t>& answer);

  const bool isLineMode_;
  bool isAnyOdd_ = false;
  std::int64_t owed_ = 0;
  std::uint32_t lastWritten_ = 0;    // the last bytes that went out, the newest lowest
  std::vector<std::uint8_t> block_;  // a status block that has begun
  std::size_t restOfReport_ = 0;     // bytes of an end-of-block report that are still to come
  std::vector<std::uint8_t> last_;
};

}  // namespace quordalvane
