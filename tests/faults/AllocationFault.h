#pragma once

#include <cstdint>

namespace quordalvane::test {

/// Which allocations a fault affects: all, or only those that return null instead of throwing.
enum class Allocation { Any, AnsweringNull };

/// As long as the object lives, the k-th allocation fails, alone or with all later allocations.
/// Only the allocations of covered threads count. Only one object may exist at a time.
class AllocationFault {
 public:
  /// The first allocation has k = 1. From now on the calling thread is a covered thread.
  AllocationFault(Allocation which, std::uint64_t k, bool fromThereOn);
  ~AllocationFault();
  AllocationFault(const AllocationFault&) = delete;
  AllocationFault& operator=(const AllocationFault&) = delete;

  /// Whether the k-th allocation was made.
  bool hasStruck() const;

  /// From now on the calling thread is a covered thread, for this fault and all others.
  static void coverThisThread();
};

}  // namespace quordalvane::test
