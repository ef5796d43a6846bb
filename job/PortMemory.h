#pragma once

#include <memory>
#include <optional>

#include "iphone-IOPort/ExternalAccessoryPort.h"
#include "job/ProofKind.h"

namespace quordalvane {

/// What earlier jobs have learnt of the printer at a port; kept as long as the port lives.
struct PortMemory {
  std::optional<ProofKind> foundProof;  ///< the one that it gives; empty if it was not asked yet
  bool mayOweMarks = false;    ///< an ESC/POS job's marks and status requests may still be answered
  bool mayOweInOrder = false;  ///< in-order answers that were asked for may still arrive
};

/// The memory of `port`, never null, which jobs use one at a time. Any thread.
PortMemory& memoryOf(const std::shared_ptr<ExternalAccessoryPort>& port);

}  // namespace quordalvane
