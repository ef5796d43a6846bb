#pragma once

#include "backends/posix/Deadline.h"

namespace quordalvane::posix {

/// Seconds since it was made.
class Stopwatch {
 public:
  double seconds() const {
    return std::chrono::duration<double>(SteadyClock::now() - start_).count();
  }

 private:
  SteadyTime start_ = SteadyClock::now();
};

}  // namespace quordalvane::posix
