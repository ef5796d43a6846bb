#pragma once

#include "simulator/Proofs.h"

namespace quordalvane::simulator {

/// Which commands a printer knows, of those that not every printer knows. A plain value.
struct Dialect {
  Proofs proofs = Proofs::all();
  bool lineMode = true;  ///< the maker's own commands besides ESC/POS
  bool display = false;  ///< those of the customer display: it alone is selected at the moment

  bool operator==(const Dialect&) const = default;
};

/// The condition under which a printer knows a command.
enum class KnownWith { Always, LineMode, Display, Block, ProcessId, InOrder };

bool knows(const Dialect& dialect, KnownWith with);

}  // namespace quordalvane::simulator
