#pragma once

#include <cstdint>

#include "tests/model/Scenario.h"

namespace quordalvane::test {

/// A call, and the scenario in which it is made.
struct RandomCase {
  Scenario scenario;
  Call call;
};

/// The case with this number, which is always the same. Its printer answers rightly, wrongly, late,
/// in pieces or not at all; its link takes any number of bytes and may be lost; its clock may step.
RandomCase randomCase(std::uint64_t seed);

}  // namespace quordalvane::test
