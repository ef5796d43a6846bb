#pragma once

#include <cstdint>

namespace quordalvane::simulator {

/// Returns true if the command 1b 52 (hex) has an international character set of this number.
bool isNationalSet(std::uint8_t number);

/// Returns the character of a byte below 80 (hex) in the set `number`, which must exist. Twelve
/// bytes differ from country to country; all others are ASCII.
char32_t nationalCharacter(std::uint8_t number, std::uint8_t byte);

}  // namespace quordalvane::simulator
