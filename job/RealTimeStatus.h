#pragma once

#include "job/PortLink.h"
#include "job/PrintResult.h"

namespace quordalvane {

/// Asks an ESC/POS printer for its status by the three real-time queries alone, which every such
/// printer knows and which move no paper. Fills `result.status`. Earlier answers that wait are
/// thrown away.
MaybeSetback askRealTimeStatus(PortLink& link, PrintResult& result);

/// The same, with a setback for a printer that is not ready.
MaybeSetback refuseUnready(PortLink& link, PrintResult& result);

}  // namespace quordalvane
