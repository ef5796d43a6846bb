#pragma once

#include <algorithm>
#include <chrono>
#include <ctime>

namespace quordalvane::posix {

/// The clock for all time limits in this folder. It does not change when the wall clock is set.
using SteadyClock = std::chrono::steady_clock;

/// A point in time on this clock.
using SteadyTime = SteadyClock::time_point;

/// Returns the point in time `seconds` from now. For zero, a negative number and not-a-number it
/// returns now. More than a year counts as a year, so that sums with the result do not overflow.
inline SteadyTime deadlineIn(double seconds) {
  constexpr double longest = 365.0 * 24 * 3600;
  const double wait = seconds > 0 ? std::min(seconds, longest) : 0;
  return SteadyClock::now() +
         std::chrono::ceil<SteadyClock::duration>(std::chrono::duration<double>(wait));
}

/// Returns the time left until `deadline` in seconds; 0 once it has passed.
inline double secondsUntil(SteadyTime deadline) {
  const std::chrono::duration<double> left = deadline - SteadyClock::now();
  return std::max(left.count(), 0.0);
}

/// Returns the time left until `deadline` in the form that system calls take; 0 once it has passed.
inline timespec timeLeft(SteadyTime deadline) {
  using namespace std::chrono;
  const auto left = std::max(deadline - SteadyClock::now(), SteadyClock::duration::zero());
  const auto whole = duration_cast<seconds>(left);
  return {.tv_sec = whole.count(), .tv_nsec = nanoseconds(left - whole).count()};
}

}  // namespace quordalvane::posix
