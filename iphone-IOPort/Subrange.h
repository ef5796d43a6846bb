#pragma once

#include <cstdint>
#include <stdexcept>
#include <string>

namespace quordalvane {

/// The `length` elements of `sequence` (a string or a byte buffer) from `location` on. Raises
/// std::out_of_range when they do not all exist: a range is never shortened silently.
template <typename Sequence>
Sequence subrange(const Sequence& sequence, std::int64_t location, std::int64_t length) {
  const auto size = static_cast<std::int64_t>(sequence.size());
  if (location < 0 || length < 0 || location > size || length > size - location) {
    throw std::out_of_range("range {" + std::to_string(location) + ", " + std::to_string(length) +
                            "} out of bounds; length " + std::to_string(size));
  }
  const auto first = sequence.begin() + location;
  return Sequence(first, first + length);
}

}  // namespace quordalvane
