#pragma once

#include <cstdint>
#include <deque>
#include <optional>

#include "simulator/Bytes.h"
#include "simulator/Instant.h"

namespace quordalvane::simulator {

/// The bytes in a printer's buffer. The printer prints these bytes at its speed. Each byte is
/// finished at an exact time, which does not depend on when `take` is called. A command takes
/// effect when its last byte is finished.
class PrintQueue {
 public:
  struct Taken {
    std::uint8_t byte;
    Instant at;  ///< the time at which the printer finished the byte
  };

  std::size_t size() const { return bytes_.size(); }

  void push(ByteView bytes, Instant now);
  void clear() { bytes_.clear(); }

  /// Removes and returns the first byte, if the printer has finished it by `now`.
  std::optional<Taken> take(Instant now);

  /// Returns the time at which the printer has finished the first `count` bytes (1 to `size()`);
  /// empty while the printing is stopped.
  std::optional<Instant> doneWith(std::size_t count) const;

  /// Starts or stops the printing, or changes its speed in bytes a second (0: unlimited). The
  /// caller must first take all bytes that are finished by `now`.
  void run(bool running, std::uint32_t bytesPerSecond, Instant now);

 private:
  void startCountingAt(Instant now);

  std::deque<std::uint8_t> bytes_;
  bool running_ = true;
  std::uint32_t bytesPerSecond_ = 0;
  Instant start_{};              // the time since which the printer has worked without a pause
  std::uint64_t doneSince_ = 0;  // how many bytes were taken since `start_`
};

}  // namespace quordalvane::simulator
