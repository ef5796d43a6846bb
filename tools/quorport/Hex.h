#pragma once

#include <cstdint>
#include <span>
#include <string>

namespace quordalvane::tool {

/// Each byte as two lower-case hex digits, without separators.
std::string hexOf(std::span<const std::uint8_t> bytes);

}  // namespace quordalvane::tool
