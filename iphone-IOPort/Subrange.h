#pragma once

#include <cstdint>
#include <stdexcept>
#include <string>

namespace quordalvane {

/// A range of `length` elements in a sequence; the first is the element at `location`.
struct Range {
  std::int64_t location = 0;
  std::int64_t length = 0;
};

/// Returns the elements of `sequence` (a string or a byte buffer) that are in `range`. Throws
/// std::out_of_range if an element of the range does not exist; the range is never shortened.
template <typename Sequence>
Sequence subrange(const Sequence& sequence, Range range) {
  const auto [location, length] = range;
  const auto size = static_cast<std::int64_t>(sequence.size());
  if (location < 0 || length < 0 || location > size || length > size - location) {
    throw std::out_of_range("range {" + std::to_string(location) + ", " + std::to_string(length) +
                            "} out of bounds; length " + std::to_string(size));
  }
  const auto first = sequence.begin() + location;
  return Sequence(first, first + length);
}

}  // namespace quordalvane
