#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace quordalvane::tool {

/// In bytes: far above any receipt, but small enough for the machine if an input has no end.
constexpr std::size_t largestJob = std::size_t{256} << 20U;

/// Reads `descriptor` to its end. Throws `std::system_error` if it cannot be read, and
/// `std::length_error` if there is more than the largest job.
std::vector<std::uint8_t> readWhole(int descriptor);

}  // namespace quordalvane::tool
