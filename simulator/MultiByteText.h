#pragma once

#include <cstddef>
#include <cstdint>

#include "simulator/Bytes.h"
#include "simulator/CharacterSets.h"
#include "simulator/Conversion.h"

namespace quordalvane::simulator {

/// Reads text in an encoding of several bytes a character.
class MultiByteText {
 public:
  /// With `sevenBit`, for Shift-JIS printers alone, the bytes are of the older code, 21 to 7e hex.
  explicit MultiByteText(MultiByte encoding, bool sevenBit = false);

  /// True if a character of several bytes begins with this one.
  bool begins(std::uint8_t byte) const;

  /// How many bytes the character has that begins with these, at least one; 0 if there is none.
  std::size_t lengthOf(ByteView bytes) const;

  /// The character of so many bytes; `noCharacter` if the encoding has no such character.
  char32_t characterOf(ByteView bytes);

 private:
  MultiByte encoding_;
  bool sevenBit_;
  Conversion conversion_;
};

}  // namespace quordalvane::simulator
