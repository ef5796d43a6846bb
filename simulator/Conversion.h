#pragma once

#include <memory>

#include "simulator/Bytes.h"

namespace quordalvane::simulator {

/// The result for bytes that encode no character.
inline constexpr char32_t noCharacter = 0xfffd;

/// Converts an encoding to Unicode, one character at a time, by the system's converter. Must not be
/// used by two threads at once.
class Conversion {
 public:
  /// If the system does not know the encoding, every character is `noCharacter`.
  explicit Conversion(const char* encoding);

  /// Returns the single character that these bytes encode. Returns `noCharacter` if they encode no
  /// character, several characters, or a control character.
  char32_t characterOf(ByteView bytes);

 private:
  struct Closer {
    void operator()(void* converter) const;
  };
  std::unique_ptr<void, Closer> converter_;
};

}  // namespace quordalvane::simulator
