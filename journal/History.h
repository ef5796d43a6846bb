#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "journal/Attempt.h"
#include "journal/Journal.h"

namespace quordalvane {

// The state of a job after all its attempts.

/// The attempt that decides the state of a job: the one that printed it; otherwise the last one of
/// which bytes may be on paper; otherwise the last one. The attempts must not be empty.
const Attempt& decisive(const std::vector<Attempt>& attempts);

/// The outcome of an attempt. Only its process knows Printing, which is never returned here.
JobState stateOf(const Attempt& attempt);

/// Why it was not printed, for a person.
std::string reasonOf(const Attempt& attempt);

/// The proof that it used; Auto before it has chosen one, and if that was not kept.
ProofKind proofOf(const Attempt& attempt);

/// The job of these attempts, whose process may live.
JobRecord recordOf(const std::vector<Attempt>& attempts, bool isBeingPrinted);

/// Milliseconds since 1970, UTC.
std::int64_t millisecondsNow();

}  // namespace quordalvane
