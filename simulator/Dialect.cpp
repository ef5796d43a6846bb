#include "simulator/Dialect.h"

namespace quordalvane::simulator {

bool knows(const Dialect& dialect, KnownWith with) {
  switch (with) {
    case KnownWith::Always:
      return true;
    case KnownWith::LineMode:
      return dialect.lineMode;
    case KnownWith::Display:
      return dialect.display;
    case KnownWith::Block:
      return dialect.proofs.has(Proof::Block);
    case KnownWith::ProcessId:
      return dialect.proofs.has(Proof::ProcessId);
    case KnownWith::InOrder:
      return dialect.proofs.has(Proof::InOrder);
  }
  return false;
}

}  // namespace quordalvane::simulator
