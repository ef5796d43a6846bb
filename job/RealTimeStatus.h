#pragma once

#include <chrono>
#include <functional>

#include "job/EscPosAnswers.h"
#include "job/PortLink.h"
#include "job/PrintResult.h"

namespace quordalvane {

/// Asks an ESC/POS printer for its status by the three real-time queries alone, which every such
/// printer knows and which move no paper. Fills `result.status`. `answers` hears all that is read
/// on the link. Each query has `limit` to be answered. `isEnough`, if given, ends it early once it
/// is true, with a setback.
MaybeSetback askRealTimeStatus(PortLink& link, const EscPosAnswers& answers, PrintResult& result,
                               std::chrono::nanoseconds limit,
                               const std::function<bool()>& isEnough = {});

/// The same within the port's time-out, with a setback for a printer that is not ready.
MaybeSetback refuseUnready(PortLink& link, const EscPosAnswers& answers, PrintResult& result);

}  // namespace quordalvane
