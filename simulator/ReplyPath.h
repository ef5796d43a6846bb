#pragma once

#include <cstdint>
#include <deque>
#include <optional>
#include <vector>

#include "simulator/Bytes.h"
#include "simulator/Faults.h"
#include "simulator/Instant.h"

namespace quordalvane::simulator {

/// Carries replies from a printer to its host, and applies faults to them. Replies never overtake
/// one another.
class ReplyPath {
 public:
  explicit ReplyPath(std::uint64_t seed) : seed_(seed) {}

  /// Sets the seed of the random numbers that decide how a fault changes a reply. The seed applies
  /// from the next reply on.
  void setSeed(std::uint64_t seed) { seed_ = seed; }

  /// Adds a fault that affects replies.
  void add(const Fault& fault) { faults_.push_back(fault); }

  /// Removes all faults. Replies in transit do not change.
  void clear() { faults_.clear(); }

  /// Accepts a reply that the printer sends at `at`.
  void send(ByteView reply, Instant at, ReplyKind kind = ReplyKind::Other);

  /// Returns the time at which the next byte arrives; empty if no byte is in transit.
  std::optional<Instant> nextArrival() const;

  /// Removes and returns the next byte, if it has arrived by `now`.
  std::optional<std::uint8_t> arrive(Instant now);

  /// Returns the count of bytes in transit.
  std::size_t underWay() const { return underWay_.size(); }

 private:
  struct Travelling {
    std::uint8_t byte;
    Instant due;
  };

  bool befalls(const Fault& fault) const;
  bool isLost() const;
  void distort(Bytes& reply) const;
  void distort(Bytes& reply, const Fault& fault) const;
  void dispatch(const Bytes& reply, Instant at);

  std::uint64_t seed_;
  std::uint64_t count_ = 0;            // the count of replies so far
  ReplyKind kind_ = ReplyKind::Other;  // the kind of the latest reply
  std::vector<Fault> faults_;
  std::deque<Travelling> underWay_;
};

}  // namespace quordalvane::simulator
