#pragma once

#include "platform/Clock.h"

namespace quordalvane::handheld {

/// The clock of the handheld platform. It calls POSIX functions for time and sleep.
class HandheldClock final : public Clock {
 public:
  TimeValue gettimeofday() override;
  std::chrono::nanoseconds monotonic() override;
  void usleep(std::uint64_t microseconds) override;
  void select(std::int32_t microseconds) override;
};

}  // namespace quordalvane::handheld
