#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>

namespace quordalvane::simulator {

/// Counts the bytes that the printer executed at once and therefore did not queue, each at its
/// position among the queued bytes. Offsets in the job thus include these bytes.
class Asides {
 public:
  /// Adds `count` bytes that were executed at once and were received just before the queued byte
  /// number `before`.
  void add(std::uint64_t before, std::size_t count);

  /// Moves the print position to just before the queued byte number `position`.
  void pass(std::uint64_t position);

  /// Returns how many of the added bytes the print position has passed.
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
