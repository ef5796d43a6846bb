#pragma once

#include <chrono>

namespace quordalvane::simulator {

/// A point in time: nanoseconds on a clock of the caller's choice that never steps back. The
/// simulator itself reads no clock.
using Instant = std::chrono::nanoseconds;

}  // namespace quordalvane::simulator
