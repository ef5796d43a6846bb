#pragma once

#include <chrono>

namespace quordalvane::simulator {

/// A point in time, as the caller counts it: nanoseconds on any clock that never steps back. The
/// simulator reads no clock of its own.
using Instant = std::chrono::nanoseconds;

}  // namespace quordalvane::simulator
