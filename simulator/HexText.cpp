#include "simulator/HexText.h"

namespace quordalvane::simulator {

std::string hexText(ByteView bytes) {
  constexpr char digits[] = "0123456789abcdef";
  std::string text;
  for (std::uint8_t byte : bytes) {
    if (!text.empty()) {
      text += ' ';
    }
    text += digits[byte >> 4U];
    text += digits[byte & 0x0fU];
  }
  return text;
}

}  // namespace quordalvane::simulator
