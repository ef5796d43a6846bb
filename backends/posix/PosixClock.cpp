#include "backends/posix/PosixClock.h"

#include <sys/time.h>

#include <cerrno>
#include <ctime>

namespace quordalvane::posix {
namespace {

// The longest sleep; no process runs so long. The sum of this sleep and any time of the steady
// clock does not overflow.
constexpr std::chrono::microseconds longestSleep = std::chrono::hours(24) * 365 * 100;

}  // namespace

void sleepUntil(SteadyTime deadline) {
  using namespace std::chrono;
  const auto sinceOrigin = deadline.time_since_epoch();
  const auto whole = floor<seconds>(sinceOrigin);
  const timespec until{.tv_sec = whole.count(),
                       .tv_nsec = nanoseconds(sinceOrigin - whole).count()};
  // The steady clock of the standard library reads CLOCK_MONOTONIC.
  while (::clock_nanosleep(CLOCK_MONOTONIC, TIMER_ABSTIME, &until, nullptr) == EINTR) {
  }
}

TimeValue PosixClock::gettimeofday() {
  timeval now{};
  ::gettimeofday(&now, nullptr);
  return {.tv_sec = now.tv_sec, .tv_usec = now.tv_usec};
}

std::chrono::nanoseconds PosixClock::monotonic() {
  return SteadyClock::now().time_since_epoch();
}

void PosixClock::usleep(std::uint64_t microseconds) {
  constexpr auto longest = static_cast<std::uint64_t>(longestSleep.count());
  const auto length = static_cast<std::int64_t>(std::min(microseconds, longest));
  sleepUntil(SteadyClock::now() + std::chrono::microseconds(length));
}

void PosixClock::select(std::int32_t microseconds) {
  if (microseconds > 0) {
    usleep(static_cast<std::uint64_t>(microseconds));
  }
}

}  // namespace quordalvane::posix
