#pragma once

#include <cstdint>

#include "simulator/Bytes.h"
#include "simulator/PrinterState.h"

namespace quordalvane::simulator {

/// The status that a printer sends unasked, after a host has chosen the conditions to be watched.
class UnaskedStatus {
 public:
  /// Chooses the conditions by the parameter of 1d 61: bit 0 is the drawer, 1 the cover and being
  /// off line, 2 the errors, 3 the paper, 6 the buttons, which are never pressed. Without any it
  /// ends.
  void choose(std::uint8_t conditions);

  /// Returns the four bytes to be sent now: on the first call after a choice, and whenever a chosen
  /// condition has changed since the last call. Empty otherwise.
  Bytes change(const PrinterState& state);

 private:
  std::uint8_t conditions_ = 0;
  Bytes latest_;  // the chosen bits of the latest status; empty before the first
};

}  // namespace quordalvane::simulator
