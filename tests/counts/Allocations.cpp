#include "tests/counts/Allocations.h"

#include <cstdlib>
#include <new>

namespace {

thread_local quordalvane::Allocations taken;

void* take(std::size_t size) noexcept {
  ++taken.count;
  taken.bytes += size;
  return std::malloc(size == 0 ? 1 : size);
}

}  // namespace

namespace quordalvane {

Allocations allocationsOfThisThread() {
  return taken;
}

}  // namespace quordalvane

// Every form but those of extended alignment, which the project does not use: a sanitizer brings
// forms of its own, and memory must go back the way it came.

void* operator new(std::size_t size) {
  void* const memory = take(size);
  if (memory == nullptr) {
    throw std::bad_alloc();
  }
  return memory;
}

void* operator new[](std::size_t size) {
  return operator new(size);
}

void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
  return take(size);
}

void* operator new[](std::size_t size, const std::nothrow_t&) noexcept {
  return take(size);
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
