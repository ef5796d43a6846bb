#pragma once

#include <cstdint>
#include <span>

namespace quordalvane {

/// Bytes in a buffer that somebody else owns.
using ByteView = std::span<const std::uint8_t>;

}  // namespace quordalvane
