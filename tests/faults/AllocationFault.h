#pragma once

#include <cstdint>

namespace quordalvane::test {

/// Which allocations a fault befalls: all, or those alone that answer null instead of raising.
enum class Allocation { any, answeringNull };

/// While it lives, the k-th allocation of its thread fails, alone or with all that follow.
class AllocationFault {
 public:
  /// `k` counts from 1.
  AllocationFault(Allocation which, std::uint64_t k, bool fromThereOn);
  ~AllocationFault();
  AllocationFault(const AllocationFault&) = delete;
  AllocationFault& operator=(const AllocationFault&) = delete;

  /// Whether there was a k-th one.
  bool hasStruck() const;
};

}  // namespace quordalvane::test
