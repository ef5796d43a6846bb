#include "simulator/HexText.h"

#include "text/Hex.h"

namespace quordalvane::simulator {

std::string hexText(ByteView bytes) {
  std::string text;
  for (const std::uint8_t byte : bytes) {
    if (!text.empty()) {
      text += ' ';
    }
    appendHex(text, byte);
  }
  return text;
}

}  // namespace quordalvane::simulator
