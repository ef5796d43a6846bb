#pragma once

#include <chrono>
#include <ctime>

namespace quordalvane::posix {

/// The clock for all time limits in this folder. Setting the wall clock does not affect it.
using SteadyClock = std::chrono::steady_clock;

/// A point in time on this clock.
using SteadyTime = SteadyClock::time_point;

/// Returns the point in time `seconds` from now. Returns the present time for zero, a negative
/// number and not-a-number. More than a year counts as a year, so that sums with the result do not
/// overflow.
SteadyTime deadlineIn(double seconds);

/// Returns whether no time is left until `deadline`.
bool hasPassed(SteadyTime deadline);

/// Returns the time left until `deadline` in seconds; 0 if `deadline` has passed.
double secondsUntil(SteadyTime deadline);

/// Returns the time left until `deadline`, in the type that system calls take; 0 if `deadline` has
/// passed.
timespec timeLeft(SteadyTime deadline);

}  // namespace quordalvane::posix
