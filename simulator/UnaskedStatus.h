#pragma once

#include <optional>

#include "simulator/Bytes.h"
#include "simulator/PrinterState.h"

namespace quordalvane::simulator {

/// The status that a printer sends unasked after a host has switched it on.
class UnaskedStatus {
 public:
  /// Switches the status on. If it is on already, it is sent again at once.
  void switchOn() { latest_ = Bytes(); }

  void switchOff() { latest_.reset(); }

  /// Returns the four bytes to be sent now: on the first call after `switchOn`, and whenever they
  /// have changed since the last call. Returns no bytes otherwise.
  Bytes change(const PrinterState& state);

 private:
  std::optional<Bytes> latest_;  // null while it is off; empty until the first `change`
};

}  // namespace quordalvane::simulator
