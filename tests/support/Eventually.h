#pragma once

#include <chrono>
#include <thread>

namespace quordalvane::test {

/// Waits until `condition` holds, for work that other threads have not finished yet. False if it
/// does not hold within a time that is ample even on a loaded machine.
template <typename Condition>
bool eventually(Condition condition) {
  const auto giveUp = std::chrono::steady_clock::now() + std::chrono::seconds(30);
  while (!condition()) {
    if (std::chrono::steady_clock::now() > giveUp) {
      return false;
    }
    std::this_thread::yield();
  }
  return true;
}

}  // namespace quordalvane::test
