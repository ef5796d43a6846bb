#include "tests/counts/Allocations.h"

#include <cstdlib>

#include "tests/support/OperatorNew.h"

namespace {

thread_local quordalvane::Allocations taken;

}  // namespace

void* quordalvane::test::take(std::size_t size, OnShortage /*onShortage*/) noexcept {
  ++taken.count;
  taken.bytes += size;
  return std::malloc(size == 0 ? 1 : size);
}

namespace quordalvane {

Allocations allocationsOfThisThread() {
  return taken;
}

}  // namespace quordalvane
