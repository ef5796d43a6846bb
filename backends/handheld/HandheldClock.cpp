#include "backends/handheld/HandheldClock.h"

#include <sys/time.h>

#include <algorithm>
#include <thread>

namespace quordalvane::handheld {
namespace {

// The longest sleep. The sum of this sleep and any time of the steady clock does not overflow.
constexpr std::chrono::microseconds longestSleep = std::chrono::hours(24) * 365;

}  // namespace

TimeValue HandheldClock::gettimeofday() {
  timeval now{};
  ::gettimeofday(&now, nullptr);
  return {.tv_sec = now.tv_sec, .tv_usec = now.tv_usec};
}

std::chrono::nanoseconds HandheldClock::monotonic() {
  return std::chrono::steady_clock::now().time_since_epoch();
}

void HandheldClock::usleep(std::uint64_t microseconds) {
  constexpr auto longest = static_cast<std::uint64_t>(longestSleep.count());
  const auto length = static_cast<std::int64_t>(std::min(microseconds, longest));
  std::this_thread::sleep_for(std::chrono::microseconds(length));
}

void HandheldClock::select(std::int32_t microseconds) {
  if (microseconds > 0) {
    usleep(static_cast<std::uint64_t>(microseconds));
  }
}

}  // namespace quordalvane::handheld
