#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>

#include "fuzz/FuzzTarget.h"

namespace quordalvane::fuzz {

/// Reads an input from its beginning, piece by piece. After the end of the input, numbers are zero
/// and texts are empty.
class Input {
 public:
  Input(const std::uint8_t* data, std::size_t size) : left_(data, size) {}

  bool isEmpty() const { return left_.empty(); }

  std::uint8_t byte() {
    const Bytes one = bytes(1);
    return one.empty() ? std::uint8_t{0} : one.front();
  }

  /// Returns the next bytes, at most `most`.
  Bytes bytes(std::size_t most) {
    const auto taken = left_.first(std::min(most, left_.size()));
    left_ = left_.subspan(taken.size());
    return {taken.begin(), taken.end()};
  }

  Bytes rest() { return bytes(left_.size()); }

  /// Returns the text before the next zero byte, and skips that byte.
  std::string text() {
    const auto length = std::find(left_.begin(), left_.end(), 0) - left_.begin();
    const Bytes taken = bytes(static_cast<std::size_t>(length));
    bytes(1);
    return {taken.begin(), taken.end()};
  }

 private:
  std::span<const std::uint8_t> left_;
};

}  // namespace quordalvane::fuzz
