#pragma once

#include <algorithm>
#include <chrono>
#include <ctime>

namespace quordalvane::posix {

/// The clock of all time limits here: no step of the wall clock moves it.
using SteadyClock = std::chrono::steady_clock;

/// An instant of that clock.
using SteadyTime = SteadyClock::time_point;

/// The instant `seconds` from now. Zero, less and not-a-number give now; more than a year is a
/// year, which keeps every sum with it in range.
inline SteadyTime deadlineIn(double seconds) {
  constexpr double longest = 365.0 * 24 * 3600;
  const double wait = seconds > 0 ? std::min(seconds, longest) : 0;
  return SteadyClock::now() +
         std::chrono::ceil<SteadyClock::duration>(std::chrono::duration<double>(wait));
}

/// The time that is left until `deadline`, in seconds; 0 once it has passed.
inline double secondsUntil(SteadyTime deadline) {
  const std::chrono::duration<double> left = deadline - SteadyClock::now();
  return std::max(left.count(), 0.0);
}

/// The same for a call of the system.
inline timespec timeLeft(SteadyTime deadline) {
  using namespace std::chrono;
  const auto left = std::max(deadline - SteadyClock::now(), SteadyClock::duration::zero());
  const auto whole = duration_cast<seconds>(left);
  return {.tv_sec = whole.count(), .tv_nsec = nanoseconds(left - whole).count()};
}

}  // namespace quordalvane::posix
