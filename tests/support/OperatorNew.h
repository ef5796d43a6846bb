#pragma once

#include <cstddef>
#include <cstdlib>
#include <new>

// Replaces the program's operator new, in all forms, by a function of the file that includes this
// header. Only one source of a program may include this header.

namespace quordalvane::test {

enum class OnShortage { Raises, AnswersNull };

/// The memory, from std::malloc, or null if there is none.
void* take(std::size_t size, OnShortage onShortage) noexcept;

}  // namespace quordalvane::test

// This file replaces every form of operator new except the forms with extended alignment, which the
// project does not use. A sanitizer has its own forms, and memory must be freed by the form that
// allocated it.

void* operator new(std::size_t size) {
  void* const memory = quordalvane::test::take(size, quordalvane::test::OnShortage::Raises);
  if (memory == nullptr) {
    throw std::bad_alloc();
  }
  return memory;
}

void* operator new[](std::size_t size) {
  return operator new(size);
}

void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
  return quordalvane::test::take(size, quordalvane::test::OnShortage::AnswersNull);
}

void* operator new[](std::size_t size, const std::nothrow_t&) noexcept {
  return quordalvane::test::take(size, quordalvane::test::OnShortage::AnswersNull);
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
