#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <string>

#include "tests/support/Replay.h"

namespace quordalvane::test {

/// Calls `strikes(k)` for k = 1, 2, … until the k-th fault has no effect or a test has failed.
/// Returns how many faults had an effect. `name` and k together name a case. If one case is to be
/// replayed, all other cases are left out.
template <typename Strikes>
std::uint64_t sweepAll(const std::string& name, Strikes strikes) {
  const auto replayed = replayedSeed(name);
  if (replayedCase() && !replayed) {
    return 0;
  }
  for (std::uint64_t k = replayed.value_or(1);; ++k) {
    SCOPED_TRACE(howToReplay(name + " " + std::to_string(k)));
    if (!strikes(k) || replayed || testing::Test::HasFailure()) {
      return k - 1;
    }
  }
}

}  // namespace quordalvane::test
