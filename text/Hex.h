#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

namespace quordalvane {

/// The hexadecimal digits, ordered by value.
/// @{
inline constexpr std::string_view hexDigits = "0123456789abcdef";
inline constexpr std::string_view upperCaseHexDigits = "0123456789ABCDEF";
/// @}

constexpr bool isHexDigit(char c) {
  return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F');
}

/// Appends a byte as two lower-case hexadecimal digits.
inline void appendHex(std::string& out, std::uint8_t byte) {
  out += {hexDigits[byte >> 4U], hexDigits[byte & 0xFU]};
}

/// Returns each byte as two lower-case hexadecimal digits, with `separator` between the bytes.
std::string hexText(std::span<const std::uint8_t> bytes, std::string_view separator = "");

}  // namespace quordalvane
