#pragma once

#include <chrono>
#include <cstdint>

#include <quordalvane/QuorExport.h>

namespace quordalvane {

/// A time of the wall clock, since the epoch.
struct TimeValue {
  std::int64_t tv_sec;   ///< whole seconds
  std::int64_t tv_usec;  ///< the microseconds of the second, 0 to 999999
};

/// The source of the time and of every wait. Several threads may use a clock at the same time.
class QUOR_EXPORT Clock {
 public:
  virtual ~Clock() = default;

  /// Returns the time of the wall clock. The clock may be set forwards or backwards between two
  /// calls.
  virtual TimeValue gettimeofday() = 0;

  /// Returns the time of a clock that never moves backwards. The origin of this clock is
  /// unspecified, so the clock is good for intervals but not for dates.
  virtual std::chrono::nanoseconds monotonic() = 0;

  /// Sleeps for at least `microseconds`; a signal does not shorten the sleep. With zero, `usleep`
  /// returns at once.
  virtual void usleep(std::uint64_t microseconds) = 0;

  /// Sleeps for `microseconds`, as a `select` call without descriptors does. A value of a million
  /// or more is allowed. With zero or less, `select` returns at once.
  virtual void select(std::int32_t microseconds) = 0;
};

}  // namespace quordalvane
