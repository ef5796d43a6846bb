#pragma once

#include <cstdint>
#include <deque>
#include <optional>
#include <vector>

#include "simulator/Bytes.h"
#include "simulator/Faults.h"
#include "simulator/Instant.h"

namespace quordalvane::simulator {

/// The way of the replies from a printer to its host, on which faults befall them. Replies
/// never overtake one another.
class ReplyPath {
 public:
  explicit ReplyPath(std::uint64_t seed) : seed_(seed) {}

  /// Decides the random choices of faults, from the next reply on.
  void setSeed(std::uint64_t seed) { seed_ = seed; }

  /// Adds a fault that befalls replies.
  void add(const Fault& fault) { faults_.push_back(fault); }

  /// Takes all faults away. Replies under way keep their fate.
  void clear() { faults_.clear(); }

  /// Takes a reply that the printer gives at `at`.
  void send(ByteView reply, Instant at, ReplyKind kind = ReplyKind::Other);

  /// When the next byte arrives; empty while nothing is under way.
  std::optional<Instant> nextArrival() const;

  /// Takes the next byte off the way if it has arrived by `now`.
  std::optional<std::uint8_t> arrive(Instant now);

  /// How many bytes are under way.
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
  std::uint64_t count_ = 0;            // replies so far
  ReplyKind kind_ = ReplyKind::Other;  // of the latest
  std::vector<Fault> faults_;
  std::deque<Travelling> underWay_;
};

}  // namespace quordalvane::simulator
