#pragma once

#include "backends/posix/Deadline.h"
#include "platform/Clock.h"

namespace quordalvane::posix {

/// Sleeps until `deadline`; signals do not shorten the sleep. Returns at once if the deadline has
/// passed.
void sleepUntil(SteadyTime deadline);

class PosixClock final : public Clock {
 public:
  TimeValue gettimeofday() override;
  std::chrono::nanoseconds monotonic() override;
  void usleep(std::uint64_t microseconds) override;
  void select(std::int32_t microseconds) override;
};

}  // namespace quordalvane::posix
