#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

namespace quordalvane {

/// Looks for the reports that an ESC/POS printer sends when it has passed an end-of-block mark,
/// 1b 1d 03 01 00 00 count 00, in the bytes that come from it, however they are cut into pieces.
class BlockReport {
 public:
  /// Takes the next bytes that came; none is as good as not called.
  void feed(std::span<const std::uint8_t> bytes);

  /// Forgets everything, a report that has begun included.
  void clear();

  /// The count of the last whole report; none while there was none.
  std::optional<std::uint8_t> lastCount() const { return lastCount_; }

 private:
  void feed(std::uint8_t byte);

  std::size_t matched_ = 0;
  std::uint8_t count_ = 0;
  std::optional<std::uint8_t> lastCount_;
};

}  // namespace quordalvane
