#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>

#include "job/ByteView.h"

namespace quordalvane {

/// Looks for the reports that an ESC/POS printer sends when it has passed an end-of-block mark, 1b
/// 1d 03 01 00 00 count 00, in the bytes that it sends, however they are cut into pieces.
class BlockReport {
 public:
  /// Takes the next bytes that arrived, which may be empty.
  void feed(ByteView bytes);

  /// Forgets everything, including a report that has begun.
  void clear();

  /// The count of the last whole report; empty before the first.
  std::optional<std::uint8_t> lastCount() const { return lastCount_; }

 private:
  void feed(std::uint8_t byte);

  std::size_t matched_ = 0;
  std::uint8_t count_ = 0;
  std::optional<std::uint8_t> lastCount_;
};

}  // namespace quordalvane
