#pragma once

#include <cstdint>

namespace quordalvane {

struct Allocations {
  std::uint64_t count = 0;
  std::uint64_t bytes = 0;
};

/// The memory that the calling thread has taken from the heap so far, by `new` in all its forms.
/// The counting begins when the program starts.
Allocations allocationsOfThisThread();

/// The memory that `body` takes from the heap on this thread.
template <typename Body>
Allocations allocationsOf(Body body) {
  const Allocations before = allocationsOfThisThread();
  body();
  const Allocations after = allocationsOfThisThread();
  return {.count = after.count - before.count, .bytes = after.bytes - before.bytes};
}

}  // namespace quordalvane
