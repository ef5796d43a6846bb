#pragma once

#include <memory>

#include "simulator/Bytes.h"

namespace quordalvane::simulator {

/// Stands for bytes that are not a character.
inline constexpr char32_t noCharacter = 0xfffd;

/// Converts one encoding to Unicode by the system's converter, one character at a time. Must not be
/// used by two threads at once.
class Conversion {
 public:
  /// If the system does not know the encoding, every character is missing.
  explicit Conversion(const char* encoding);

  /// The single character that these bytes encode. `noCharacter` if they encode no character,
  /// several characters, or a control character.
  char32_t characterOf(ByteView bytes);

 private:
  struct Closer {
    void operator()(void* converter) const;
  };
  std::unique_ptr<void, Closer> converter_;
};

}  // namespace quordalvane::simulator
