#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>

namespace quordalvane::simulator {

/// Counts the bytes of a stream that acted at once and were not queued, each at its place among the
/// queued bytes. Offsets in the job thus include them.
class Asides {
 public:
  /// Adds bytes that were received before the byte that was queued as number `before`.
  void add(std::uint64_t before, std::size_t count);

  /// Sets the print position, which is before the byte that was queued as number `position`.
  void pass(std::uint64_t position);

  /// Returns how many bytes the print position has passed.
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
