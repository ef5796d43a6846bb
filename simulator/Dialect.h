#pragma once

#include "simulator/Proofs.h"

namespace quordalvane::simulator {

/// Which optional commands a printer knows. A plain value.
struct Dialect {
  Proofs proofs = Proofs::all();
  bool lineMode = true;  ///< it knows the maker's own commands as well as ESC/POS
  bool display = false;  ///< only the customer display is selected now, so its commands count

  bool operator==(const Dialect&) const = default;
};

/// The condition under which a printer knows a command.
enum class KnownWith { Always, LineMode, Display, Block, ProcessId, InOrder };

bool knows(const Dialect& dialect, KnownWith with);

}  // namespace quordalvane::simulator
