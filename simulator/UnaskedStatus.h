#pragma once

#include <optional>

#include "simulator/Bytes.h"
#include "simulator/PrinterState.h"

namespace quordalvane::simulator {

/// Decides when the printer reports its status without a request. A host must first switch these
/// reports on.
class UnaskedStatus {
 public:
  /// Switches the reports on. The next call of `change` then returns the status, even if the
  /// reports were on already.
  void switchOn() { latest_ = Bytes(); }

  /// Switches the reports off. From then on, `change` returns no bytes.
  void switchOff() { latest_.reset(); }

  /// Returns the four bytes to be sent now, if the reports are on: on the first call after
  /// `switchOn`, and whenever the status has changed since the last call. Returns no bytes
  /// otherwise.
  Bytes change(const PrinterState& state);

 private:
  // The status that `change` returned last. It is `std::nullopt` while the reports are off. After
  // `switchOn` it is an empty `Bytes` until `change` is called.
  std::optional<Bytes> latest_;
};

}  // namespace quordalvane::simulator
