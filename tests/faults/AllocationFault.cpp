#include "tests/faults/AllocationFault.h"

#include <cstdlib>
#include <new>

namespace {

using quordalvane::test::Allocation;

struct Plan {
  bool armed = false;
  Allocation which = Allocation::any;
  std::uint64_t k = 0;
  bool fromThereOn = false;
  std::uint64_t count = 0;
};

thread_local Plan plan;

bool fails(Allocation kind) {
  if (!plan.armed || (plan.which == Allocation::answeringNull && kind == Allocation::any)) {
    return false;
  }
  ++plan.count;
  return plan.fromThereOn ? plan.count >= plan.k : plan.count == plan.k;
}

void* take(std::size_t size, Allocation kind) noexcept {
  return fails(kind) ? nullptr : std::malloc(size == 0 ? 1 : size);
}

}  // namespace

namespace quordalvane::test {

AllocationFault::AllocationFault(Allocation which, std::uint64_t k, bool fromThereOn) {
  plan = {.armed = true, .which = which, .k = k, .fromThereOn = fromThereOn};
}

AllocationFault::~AllocationFault() {
  plan.armed = false;
}

bool AllocationFault::hasStruck() const {
  return plan.count >= plan.k;
}

}  // namespace quordalvane::test

// Every form but those of extended alignment, which the project does not use: a sanitizer brings
// forms of its own, and memory must go back the way it came.

void* operator new(std::size_t size) {
  void* const memory = take(size, Allocation::any);
  if (memory == nullptr) {
    throw std::bad_alloc();
  }
  return memory;
}

void* operator new[](std::size_t size) {
  return operator new(size);
}

void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
  return take(size, Allocation::answeringNull);
}

void* operator new[](std::size_t size, const std::nothrow_t&) noexcept {
  return take(size, Allocation::answeringNull);
}

void operator delete(void* memory) noexcept {
  std::free(memory);
}

void operator delete[](void* memory) noexcept {
  std::free(memory);
}

void operator delete(void* memory, std::size_t) noexcept {
  std::free(memory);
}

void operator delete[](void* memory, std::size_t) noexcept {
  std::free(memory);
}
