#pragma once

#include <cstdint>

#include "tests/model/Scenario.h"

namespace quordalvane::test {

/// Returns the word for an emulation in the names of test cases.
inline const char* emulationName(std::int32_t emulation) {
  return emulation == lineMode ? "line" : emulation == escPos ? "escpos" : "unknown";
}

}  // namespace quordalvane::test
