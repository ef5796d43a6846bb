#pragma once

#include <cstdint>

#include "platform/Clock.h"

namespace quordalvane {

/// Measures a wait whose limit is a number of whole seconds of the wall clock. If somebody sets the
/// clock back, the wait only becomes longer: the time since the start is a signed number, which may
/// be negative and does not wrap around.
class WholeSecondsWait {
 public:
  WholeSecondsWait(Clock& clock, std::uint32_t timeoutMillis)
      : clock_(clock),
        timeoutSec_(static_cast<std::int32_t>(timeoutMillis / 1000)),
        start_(clock.gettimeofday().tv_sec) {}

  /// Reads the clock. Returns true if the clock's seconds have advanced by more than the limit
  /// since the start.
  bool isOver() { return isOver(timeoutSec_); }
  bool isOver(std::int32_t timeoutSec) {
    end_ = clock_.gettimeofday().tv_sec;
    return end_ - start_ > timeoutSec;
  }

  void restart() { start_ = clock_.gettimeofday().tv_sec; }

  std::int64_t start() const { return start_; }
  std::int64_t end() const { return end_; }  ///< the clock's seconds at the last `isOver`
  std::int32_t timeoutSec() const { return timeoutSec_; }

 private:
  Clock& clock_;
  const std::int32_t timeoutSec_;
  std::int64_t start_;
  std::int64_t end_ = 0;
};

}  // namespace quordalvane
