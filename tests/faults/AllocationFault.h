#pragma once

#include <cstdint>

namespace quordalvane::test {

/// Which allocations a fault affects: all, or only those that return null instead of throwing.
enum class Allocation { Any, AnsweringNull };

/// As long as the object lives, the k-th allocation fails, alone or with all later allocations.
/// Only the allocations of covered threads count. A thread is covered if it has made an object of
/// this class or has called `coverThisThread`. Only one object may exist at a time.
class AllocationFault {
 public:
  /// The first allocation has k = 1. Also calls `coverThisThread`.
  AllocationFault(Allocation which, std::uint64_t k, bool fromThereOn);
  ~AllocationFault();
  AllocationFault(const AllocationFault&) = delete;
  AllocationFault& operator=(const AllocationFault&) = delete;

  /// Whether the k-th allocation was made.
  bool hasStruck() const;

  /// Makes the calling thread a covered thread, from now on and for all faults.
  static void coverThisThread();
};

}  // namespace quordalvane::test
