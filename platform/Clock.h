#pragma once

#include <chrono>
#include <cstdint>

#include <quordalvane/QuorExport.h>

namespace quordalvane {

/// A reading of the wall clock: time since the epoch.
struct TimeValue {
  std::int64_t tv_sec;   ///< whole seconds
  std::int64_t tv_usec;  ///< and microseconds, 0 to 999999
};

/// Time, and every way to wait. All calls may be made from any thread at once.
class QUOR_EXPORT Clock {
 public:
  virtual ~Clock() = default;

  /// The wall clock. It may be stepped in either direction between two readings.
  virtual TimeValue gettimeofday() = 0;

  /// A clock that never moves backwards, from an origin of its own; for measuring, never for dates.
  virtual std::chrono::nanoseconds monotonic() = 0;

  /// Sleeps for at least `microseconds`; a signal does not shorten it. Zero returns at once.
  virtual void usleep(std::uint64_t microseconds) = 0;

  /// The sleep of a `select` call without descriptors and with a time-out of 0 seconds and
  /// `microseconds`, which may be a million or more. Zero and below return at once.
  virtual void select(std::int32_t microseconds) = 0;
};

}  // namespace quordalvane
