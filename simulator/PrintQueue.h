#pragma once

#include <cstdint>
#include <deque>
#include <optional>

#include "simulator/Bytes.h"
#include "simulator/Instant.h"

namespace quordalvane::simulator {

/// The bytes that a printer holds and works through at its speed, each at an exact instant that
/// does not depend on when anybody looks. The bytes of one command take effect with its last byte.
class PrintQueue {
 public:
  struct Taken {
    std::uint8_t byte;
    Instant at;  ///< when the printer was done with it
  };

  std::size_t size() const { return bytes_.size(); }

  void push(ByteView bytes, Instant now);
  void clear() { bytes_.clear(); }

  /// Takes the front byte if the printer is done with it by `now`.
  std::optional<Taken> take(Instant now);

  /// When the printer is done with the first `count` bytes (1 to `size()`); empty while it is
  /// stopped still.
  std::optional<Instant> doneWith(std::size_t count) const;

  /// Starts or stops the work, or changes its speed in bytes a second (0: no time at all). What was
  /// due by `now` must have been taken before.
  void run(bool running, std::uint32_t bytesPerSecond, Instant now);

 private:
  void startCountingAt(Instant now);

  std::deque<std::uint8_t> bytes_;
  bool running_ = true;
  std::uint32_t bytesPerSecond_ = 0;
  Instant start_{};              // the work on the bytes since then has not paused
  std::uint64_t doneSince_ = 0;  // bytes taken since `start_`
};

}  // namespace quordalvane::simulator
