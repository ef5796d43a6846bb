#pragma once

#include <memory>

#include "simulator/Bytes.h"

namespace quordalvane::simulator {

/// Replaces bytes that are no character.
inline constexpr char32_t noCharacter = 0xfffd;

/// The system's converter from one encoding to Unicode, a character at a time. Not for use by two
/// threads at once.
class Conversion {
 public:
  /// If the system does not know the encoding, every character is missing.
  explicit Conversion(const char* encoding);

  /// The one character that these bytes are; `noCharacter` if they are no character, several, or a
  /// control character.
  char32_t characterOf(ByteView bytes);

 private:
  struct Closer {
    void operator()(void* converter) const;
  };
  std::unique_ptr<void, Closer> converter_;
};

}  // namespace quordalvane::simulator
