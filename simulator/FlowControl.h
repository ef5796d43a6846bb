#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>

namespace quordalvane::simulator {

/// Asks a host to pause while a buffer is nearly full, and to continue when the buffer has space
/// again. Each request is one character, as on serial printers.
class FlowControl {
 public:
  static constexpr std::uint8_t pause = 0x13;
  static constexpr std::uint8_t goOn = 0x11;

  /// Returns the character to be sent if `free` bytes of a buffer of `size` bytes are free; empty
  /// if no character must be sent.
  std::optional<std::uint8_t> follow(std::size_t free, std::size_t size);

  /// Returns true if the host was asked to pause and has not yet been asked to continue.
  bool isPaused() const { return isPaused_; }

  /// Returns how many bytes must be free before the host may continue.
  static std::size_t spaceAgain(std::size_t size);

  /// Forgets the requests to a host; to be called when another host connects.
  void restart() { isPaused_ = false; }

 private:
  bool isPaused_ = false;
};

}  // namespace quordalvane::simulator
