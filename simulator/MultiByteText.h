#pragma once

#include <cstddef>
#include <cstdint>

#include "simulator/Bytes.h"
#include "simulator/CharacterSets.h"
#include "simulator/Conversion.h"

namespace quordalvane::simulator {

/// Reads text in a multi-byte encoding.
class MultiByteText {
 public:
  /// `sevenBit` selects the older Japanese code, whose bytes are 21 to 7e (hex). `sevenBit`
  /// requires Shift-JIS.
  explicit MultiByteText(MultiByte encoding, bool sevenBit = false);

  /// Returns true if a multi-byte character can begin with this byte.
  bool begins(std::uint8_t byte) const;

  /// Returns the length in bytes of the character at the start of `bytes`; 0 if there is no such
  /// character. `bytes` must not be empty.
  std::size_t lengthOf(ByteView bytes) const;

  /// Returns the character that `bytes` encode; `noCharacter` if there is none.
  char32_t characterOf(ByteView bytes);

 private:
  MultiByte encoding_;
  bool sevenBit_;
  Conversion conversion_;
};

}  // namespace quordalvane::simulator
