#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>

namespace quordalvane::simulator {

/// Counts the received bytes that were not queued: commands that act on reception, and lost data.
/// Remembers before which queued byte each of these bytes was received, so that offsets in the job
/// include them. The queued bytes before the print position have been printed or dropped.
class Asides {
 public:
  /// Adds `count` bytes that were received but not queued. The next byte to be queued has the
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
