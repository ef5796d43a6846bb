#pragma once

#include <cstdint>

namespace quordalvane::test {

/// Which allocations a fault affects: all, or only those that return null instead of throwing.
enum class Allocation { Any, AnsweringNull };

/// As long as the object lives, the k-th allocation of the covered threads fails, alone or with all
/// later allocations. Only one object may exist at a time.
class AllocationFault {
 public:
  /// `k` counts from 1. The calling thread is covered from now on.
  AllocationFault(Allocation which, std::uint64_t k, bool fromThereOn);
  ~AllocationFault();
  AllocationFault(const AllocationFault&) = delete;
  AllocationFault& operator=(const AllocationFault&) = delete;

  /// Whether the k-th allocation was made.
  bool hasStruck() const;

  /// The calling thread is covered from now on, by this fault and all others.
  static void coverThisThread();
};

}  // namespace quordalvane::test
