#pragma once

#include <mutex>
#include <utility>

#include "backends/virtual/VirtualAccessory.h"

namespace quordalvane::test {

/// A printer in this process whose faults a test can replace.
class FaultyAccessory : public virtuals::VirtualAccessory {
 public:
  using VirtualAccessory::VirtualAccessory;

  /// Sets the faults of later sessions; the present session keeps its faults. May be called from
  /// any thread.
  void setFaults(simulator::Faults faults) {
    const std::lock_guard lock(inside().mutex);
    inside().faults = std::move(faults);
  }
};

}  // namespace quordalvane::test
