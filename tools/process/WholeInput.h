#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace quordalvane::tool {

/// The size of the largest job in bytes. This is far more than any receipt has, and keeps an
/// endless input from filling the machine's memory.
constexpr std::size_t largestJob = std::size_t{256} << 20U;

/// Reads `descriptor` to its end. Throws `std::system_error` if `descriptor` cannot be read, and
/// `std::length_error` if the input is larger than the largest job.
std::vector<std::uint8_t> readWhole(int descriptor);

}  // namespace quordalvane::tool
