#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>

#include "job/ByteView.h"

namespace quordalvane {

/// Finds an ESC/POS printer's reports in the bytes that it sends. The printer sends a report, 1b 1d
/// 03 01 00 00 count 00, when it has reached an end-of-block mark. A report may arrive in any
/// number of pieces.
class BlockReport {
 public:
  /// Processes the next bytes that arrived; `bytes` may be empty.
  void feed(ByteView bytes);

  /// Forgets everything, including an incomplete report.
  void clear();

  /// Returns the count of the last complete report; null before the first.
  std::optional<std::uint8_t> lastCount() const { return lastCount_; }

 private:
  void feed(std::uint8_t byte);

  std::size_t matched_ = 0;
  std::uint8_t count_ = 0;
  std::optional<std::uint8_t> lastCount_;
};

}  // namespace quordalvane
