#pragma once

#include <optional>

#include "simulator/Bytes.h"
#include "simulator/PrinterState.h"

namespace quordalvane::simulator {

/// A status that a printer sends without a request, after a host has switched this service on.
class UnaskedStatus {
 public:
  /// Switches the service on. The next `change` then returns the status, even if the service was on
  /// already.
  void switchOn() { latest_ = Bytes(); }

  void switchOff() { latest_.reset(); }

  /// Returns the four bytes to be sent now: on the first call after `switchOn`, and whenever the
  /// status has changed since the last call. Returns no bytes otherwise.
  Bytes change(const PrinterState& state);

 private:
  // The status that was returned last. It has no value while the service is off, and no bytes
  // between `switchOn` and the next `change`.
  std::optional<Bytes> latest_;
};

}  // namespace quordalvane::simulator
