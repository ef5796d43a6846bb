#include "tools/quorport/Hex.h"

#include "logging/Hex.h"

namespace quordalvane::tool {

std::string hexOf(std::span<const std::uint8_t> bytes) {
  std::string text;
  for (const std::uint8_t byte : bytes) {
    text += hexDigits[byte >> 4U];
    text += hexDigits[byte & 0xfU];
  }
  return text;
}

}  // namespace quordalvane::tool
