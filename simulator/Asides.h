#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>

namespace quordalvane::simulator {

/// The bytes of a stream that acted at once and were not queued: they keep their place among those
/// that were, so that offsets in the job count them.
class Asides {
 public:
  /// Adds bytes that were received before the byte that was queued as number `before`.
  void add(std::uint64_t before, std::size_t count);

  /// The print position is before the byte that was queued as number `position`.
  void pass(std::uint64_t position);

  /// How many bytes the print position has passed.
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
