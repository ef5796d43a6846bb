#pragma once

#include <memory>
#include <optional>
#include <set>

#include "iphone-IOPort/ExternalAccessoryPort.h"
#include "platform/ProofKind.h"

namespace quordalvane {

/// Facts that earlier jobs on a port have found out about its printer. These facts are kept as long
/// as the port exists.
struct PortMemory {
  /// How the printer proves that it has printed a job; null if no job has asked the printer yet.
  std::optional<ProofKind> foundProof;

  std::set<ProofKind> owed;  ///< the kinds of proof whose queries the printer may still answer
};

/// Returns the PortMemory that belongs to `port`. `port` must not be null. Any thread may call this
/// function, but only one job at a time may use the PortMemory of a port.
PortMemory& memoryOf(const std::shared_ptr<ExternalAccessoryPort>& port);

}  // namespace quordalvane
