#pragma once

#include <cstdint>
#include <span>
#include <string>

namespace quordalvane::simulator {

/// Each byte as two lower-case hex digits, with blanks between them.
std::string hexText(std::span<const std::uint8_t> bytes);

}  // namespace quordalvane::simulator
