#include "tools/quorport/Hex.h"

namespace quordalvane::tool {

std::string hexOf(std::span<const std::uint8_t> bytes) {
  constexpr char digits[] = "0123456789abcdef";
  std::string text;
  for (const std::uint8_t byte : bytes) {
    text += digits[byte >> 4U];
    text += digits[byte & 0xfU];
  }
  return text;
}

}  // namespace quordalvane::tool
