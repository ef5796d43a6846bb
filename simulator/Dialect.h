#pragma once

#include "simulator/Proofs.h"

namespace quordalvane::simulator {

/// The optional commands that a printer knows. A plain value.
struct Dialect {
  Proofs proofs = Proofs::all();
  bool lineMode = true;  ///< the printer also knows the maker's own commands
  bool display = false;  ///< true while only the customer display is selected

  bool operator==(const Dialect&) const = default;
};

/// The condition under which a printer knows a command.
enum class KnownWith { Always, LineMode, Display, Block, ProcessId, InOrder };

bool knows(const Dialect& dialect, KnownWith with);

}  // namespace quordalvane::simulator
