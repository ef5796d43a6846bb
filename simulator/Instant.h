#pragma once

#include <algorithm>
#include <chrono>
#include <optional>

namespace quordalvane::simulator {

/// A point in time: nanoseconds on a clock of the caller's choice that never steps back. The
/// simulator itself reads no clock.
using Instant = std::chrono::nanoseconds;

/// Returns the earlier of two points in time. An empty value means never.
inline std::optional<Instant> earlier(std::optional<Instant> one, std::optional<Instant> other) {
  return one && other ? std::min(one, other) : one ? one : other;
}

}  // namespace quordalvane::simulator
