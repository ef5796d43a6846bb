#pragma once

#include <cstdint>

#include "tests/model/Scenario.h"

namespace quordalvane::test {

/// A call, and the scenario in which it is made.
struct RandomCase {
  Scenario scenario;
  Call call;
};

/// The case of a seed: the same seed always gives the same case. The printer of the case answers
/// rightly, wrongly, late, in pieces or not at all. The link takes any number of bytes and may be
/// lost. The wall clock may jump.
RandomCase randomCase(std::uint64_t seed);

}  // namespace quordalvane::test
