#include "tools/quorport/Hex.h"

#include "text/Hex.h"

namespace quordalvane::tool {

std::string hexOf(std::span<const std::uint8_t> bytes) {
  std::string text;
  for (const std::uint8_t byte : bytes) {
    appendHex(text, byte);
  }
  return text;
}

}  // namespace quordalvane::tool
