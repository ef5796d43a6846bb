#include "tests/faults/AllocationFault.h"

#include <atomic>
#include <cstdlib>

#include "tests/support/OperatorNew.h"

namespace quordalvane::test {
namespace {

// All threads that have called `coverThisThread` share one fault. So the allocations of a routine
// also fail if it runs on another of these threads.
struct Plan {
  std::atomic<bool> armed = false;
  std::atomic<Allocation> which = Allocation::Any;
  std::atomic<std::uint64_t> k = 0;
  std::atomic<bool> fromThereOn = false;
  std::atomic<std::uint64_t> count = 0;
};

Plan plan;
thread_local bool isCovered = false;

bool fails(OnShortage onShortage) {
  if (!isCovered || !plan.armed ||
      (plan.which == Allocation::AnsweringNull && onShortage == OnShortage::Raises)) {
    return false;
  }
  const std::uint64_t count = ++plan.count;
  return plan.fromThereOn ? count >= plan.k : count == plan.k;
}

}  // namespace

void* take(std::size_t size, OnShortage onShortage) noexcept {
  return fails(onShortage) ? nullptr : std::malloc(size == 0 ? 1 : size);
}

AllocationFault::AllocationFault(Allocation which, std::uint64_t k, bool fromThereOn) {
  coverThisThread();
  plan.which = which;
  plan.k = k;
  plan.fromThereOn = fromThereOn;
  plan.count = 0;
  plan.armed = true;
}

AllocationFault::~AllocationFault() {
  plan.armed = false;
}

bool AllocationFault::hasStruck() const {
  return plan.count >= plan.k;
}

void AllocationFault::coverThisThread() {
  isCovered = true;
}

}  // namespace quordalvane::test
