#include "simulator/CharacterMemory.h"

#include "simulator/GraphicsMemory.h"

namespace quordalvane::simulator {

// The command begins with 1b 26 y c1 c2. Then each character from c1 to c2 has one byte for its
// width x, and x columns of y bytes.
void CharacterMemory::define(ByteView command) {
  const unsigned bytesAColumn = command[2];
  std::size_t at = 5;
  for (unsigned byte = command[3]; byte <= command[4] && at < command.size(); ++byte) {
    const unsigned width = command[at];
    const std::size_t size = std::size_t{bytesAColumn} * width;
    ++at;
    if (size > command.size() - at) {
      return;
    }
    characters_[static_cast<std::uint8_t>(byte)] =
        fromColumns(command.subspan(at, size), width, bytesAColumn * 8, 1, 1);
    at += size;
  }
}

const Bitmap* CharacterMemory::find(std::uint8_t byte) const {
  const auto found = isOn_ ? characters_.find(byte) : characters_.end();
  return found == characters_.end() ? nullptr : &found->second;
}

}  // namespace quordalvane::simulator
