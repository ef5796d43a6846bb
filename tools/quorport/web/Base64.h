#pragma once

#include <cstdint>
#include <span>
#include <string>

namespace quordalvane::tool {

/// Returns the bytes in base64, with padding.
std::string base64(std::span<const std::uint8_t> bytes);

}  // namespace quordalvane::tool
