#include "backends/posix/Deadline.h"

#include <algorithm>
#include <cmath>

namespace quordalvane::posix {
namespace {

SteadyClock::duration durationUntil(SteadyTime deadline) {
  return std::max(deadline - SteadyClock::now(), SteadyClock::duration::zero());
}

}  // namespace

SteadyTime deadlineIn(double seconds) {
  constexpr double longest = 365.0 * 24 * 3600;
  const double wait = std::min(std::fmax(seconds, 0), longest);
  return SteadyClock::now() +
         std::chrono::ceil<SteadyClock::duration>(std::chrono::duration<double>(wait));
}

bool hasPassed(SteadyTime deadline) {
  return durationUntil(deadline) == SteadyClock::duration::zero();
}

double secondsUntil(SteadyTime deadline) {
  return std::chrono::duration<double>(durationUntil(deadline)).count();
}

timespec timeLeft(SteadyTime deadline) {
  using namespace std::chrono;
  const auto left = durationUntil(deadline);
  const auto whole = floor<seconds>(left);
  return {.tv_sec = whole.count(), .tv_nsec = nanoseconds(left - whole).count()};
}

}  // namespace quordalvane::posix
