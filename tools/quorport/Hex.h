#pragma once

#include <cstdint>
#include <span>
#include <string>

namespace quordalvane::tool {

/// Lower-case pairs of digits, nothing between them.
std::string hexOf(std::span<const std::uint8_t> bytes);

}  // namespace quordalvane::tool
