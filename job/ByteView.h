#pragma once

#include <cstdint>
#include <span>

namespace quordalvane {

/// Bytes that lie in somebody else's buffer.
using ByteView = std::span<const std::uint8_t>;

}  // namespace quordalvane
