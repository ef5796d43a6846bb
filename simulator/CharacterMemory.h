#pragma once

#include <cstdint>
#include <map>

#include "simulator/Bytes.h"
#include "simulator/Paper.h"

namespace quordalvane::simulator {

/// The characters that a job defines itself, by the command 1b 26 (hex).
class CharacterMemory {
 public:
  /// Stores the characters of a command 1b 26.
  void define(ByteView command);

  /// Forgets the character of this byte.
  void erase(std::uint8_t byte) { characters_.erase(byte); }

  void turn(bool on) { isOn_ = on; }

  /// Returns the dots of a character. Returns null if the job has not defined the character, or has
  /// switched off the characters that it defined.
  const Bitmap* find(std::uint8_t byte) const;

 private:
  std::map<std::uint8_t, Bitmap> characters_;
  bool isOn_ = false;
};

}  // namespace quordalvane::simulator
