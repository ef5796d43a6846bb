#pragma once

#include <cstdint>

#include "tests/model/Scenario.h"

namespace quordalvane::test {

/// The form in the name of a case.
inline const char* emulationName(std::int32_t emulation) {
  return emulation == lineMode ? "line" : emulation == escPos ? "escpos" : "unknown";
}

}  // namespace quordalvane::test
