#pragma once

#include "backends/posix/Deadline.h"
#include "platform/Clock.h"

namespace quordalvane::posix {

/// Sleeps until `deadline`; signals do not shorten it. One that has passed returns at once.
void sleepUntil(SteadyTime deadline);

/// The system's own clocks and sleeps.
class PosixClock final : public Clock {
 public:
  TimeValue gettimeofday() override;
  std::chrono::nanoseconds monotonic() override;
  void usleep(std::uint64_t microseconds) override;
  void select(std::int32_t microseconds) override;
};

}  // namespace quordalvane::posix
