#pragma once

#include <memory>
#include <optional>
#include <set>

#include "iphone-IOPort/ExternalAccessoryPort.h"
#include "platform/ProofKind.h"

namespace quordalvane {

/// What earlier jobs have learnt of the printer at a port; kept as long as the port lives.
struct PortMemory {
  std::optional<ProofKind> foundProof;  ///< the one that it gives; empty if it was not asked yet
  std::set<ProofKind> owed;             ///< those whose questions may still be answered
};

/// The memory of `port`, never null, which jobs use one at a time. Any thread.
PortMemory& memoryOf(const std::shared_ptr<ExternalAccessoryPort>& port);

}  // namespace quordalvane
