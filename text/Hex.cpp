#include "text/Hex.h"

namespace quordalvane {

std::string hexText(std::span<const std::uint8_t> bytes, std::string_view separator) {
  std::string text;
  for (const std::uint8_t byte : bytes) {
    text += text.empty() ? "" : separator;
    appendHex(text, byte);
  }
  return text;
}

}  // namespace quordalvane
