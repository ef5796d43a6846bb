#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>

namespace quordalvane::simulator {

/// Counts the received bytes that were not queued: commands that act on reception, and lost data.
/// Queued bytes are numbered from 0. The print position is the number of the next byte that the
/// printer takes from the queue. Among all received bytes, queued or not, this byte has the number
/// `passed()` + print position. Offsets in a job are calculated from such numbers.
class Asides {
 public:
  /// Adds `count` bytes that were received but not queued. The next byte to be queued has the
  /// number `before`.
  void add(std::uint64_t before, std::size_t count);

  /// Moves the print position forward to `position`.
  void pass(std::uint64_t position);

  /// Returns how many unqueued bytes were received before the byte at the print position.
  std::uint64_t passed() const { return passed_; }

 private:
  struct Aside {
    std::uint64_t before;
    std::uint64_t bytes;
  };

  std::deque<Aside> ahead_;
  std::uint64_t passed_ = 0;
};

}  // namespace quordalvane::simulator
