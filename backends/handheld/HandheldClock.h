#pragma once

#include "platform/Clock.h"

namespace quordalvane::handheld {

/// Uses the clocks and sleeps that all systems of this family have.
class HandheldClock final : public Clock {
 public:
  TimeValue gettimeofday() override;
  std::chrono::nanoseconds monotonic() override;
  void usleep(std::uint64_t microseconds) override;
  void select(std::int32_t microseconds) override;
};

}  // namespace quordalvane::handheld
