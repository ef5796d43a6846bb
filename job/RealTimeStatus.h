#pragma once

#include <chrono>

#include "job/PortLink.h"
#include "job/PrintResult.h"

namespace quordalvane {

/// Asks an ESC/POS printer for its status by the three real-time queries alone, which every such
/// printer knows and which move no paper. Fills `result.status`.
/// Each query has `limit` to be answered.
MaybeSetback askRealTimeStatus(PortLink& link, PrintResult& result, std::chrono::nanoseconds limit);

/// The same within the port's time-out, with a setback for a printer that is not ready.
MaybeSetback refuseUnready(PortLink& link, PrintResult& result);

}  // namespace quordalvane
