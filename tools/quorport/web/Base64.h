#pragma once

#include <cstdint>
#include <span>
#include <string>

namespace quordalvane::tool {

/// The bytes in the 64 characters that a text may hold anywhere, padded.
std::string base64(std::span<const std::uint8_t> bytes);

}  // namespace quordalvane::tool
