#pragma once

#include <cstdint>
#include <map>

#include "simulator/Bytes.h"
#include "simulator/Paper.h"

namespace quordalvane::simulator {

/// The characters that a job draws itself, by the command 1b 26.
class CharacterMemory {
 public:
  /// Takes the characters of the command 1b 26.
  void define(ByteView command);

  /// Forgets one.
  void erase(std::uint8_t byte) { characters_.erase(byte); }

  void turn(bool on) { isOn_ = on; }

  /// The dots of a character; null if it is not drawn by the job, or if those are turned off.
  const Bitmap* find(std::uint8_t byte) const;

 private:
  std::map<std::uint8_t, Bitmap> characters_;
  bool isOn_ = false;
};

}  // namespace quordalvane::simulator
