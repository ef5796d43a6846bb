#pragma once

#include <chrono>
#include <functional>

#include "job/EscPosAnswers.h"
#include "job/PortLink.h"
#include "job/PrintResult.h"

namespace quordalvane {

/// Asks an ESC/POS printer for its status and stores it in `result.status`. Sends only the three
/// real-time queries, which every ESC/POS printer knows and which move no paper. The caller must
/// feed `answers` with all bytes that are read on the link. Waits up to `limit` for each answer.
/// Returns a setback with the reason if an answer is missing. `isEnough` may be empty; if it
/// returns true, the wait ends at once and the answer counts as missing.
MaybeSetback askRealTimeStatus(PortLink& link, const EscPosAnswers& answers, PrintResult& result,
                               std::chrono::nanoseconds limit,
                               const std::function<bool()>& isEnough = {});

/// Drops the received bytes that nobody has read, and then works as `askRealTimeStatus` with the
/// port's time-out as the limit. Also returns a setback if the printer is not ready.
MaybeSetback refuseUnready(PortLink& link, const EscPosAnswers& answers, PrintResult& result);

}  // namespace quordalvane
