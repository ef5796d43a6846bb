#pragma once

#include <cstdint>

#include "simulator/Paper.h"

namespace quordalvane::tool {

/// What a printer has done since it was switched on.
struct Counters {
  std::uint64_t jobs = 0;  ///< papers that were torn off, and jobs without paper
  std::uint64_t cuts = 0;
  std::uint64_t drawer = 0;  ///< pulses
  std::uint64_t beeps = 0;

  /// Adds what the record of a paper says.
  void add(const simulator::Paper& paper) {
    cuts += paper.record().cuts();
    drawer += paper.record().drawer();
    beeps += paper.record().beeps();
  }
};

}  // namespace quordalvane::tool
