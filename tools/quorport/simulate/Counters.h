#pragma once

#include <cstdint>

#include "simulator/Paper.h"

namespace quordalvane::tool {

/// Counts of a printer's actions since it was switched on.
struct Counters {
  /// The count of receipts that were torn off. A job without a receipt also counts if it had an
  /// effect, for example if it opened the drawer.
  std::uint64_t jobs = 0;

  std::uint64_t cuts = 0;
  std::uint64_t drawer = 0;  ///< the count of pulses to the cash drawer
  std::uint64_t beeps = 0;

  /// Adds the counts of one paper.
  void add(const simulator::Paper& paper) {
    cuts += paper.record().cuts();
    drawer += paper.record().drawer();
    beeps += paper.record().beeps();
  }
};

}  // namespace quordalvane::tool
