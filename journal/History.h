#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "journal/Attempt.h"
#include "journal/Journal.h"

namespace quordalvane {

// Functions that derive the state of a job from its attempts.

/// Returns the attempt that decides the state of a job: the attempt that printed the job; otherwise
/// the last attempt that may have put bytes on paper; otherwise the last attempt. `attempts` must
/// not be empty.
const Attempt& decisive(const std::vector<Attempt>& attempts);

/// Returns the state of a job after this attempt. Never returns Printing, because the attempt does
/// not show whether its process is still running.
JobState stateOf(const Attempt& attempt);

/// Returns, as a text for a person, why the attempt did not print the job.
std::string reasonOf(const Attempt& attempt);

/// Returns the proof that the attempt used; Auto if the attempt has not chosen a proof yet, or if
/// the proof was not recorded.
ProofKind proofOf(const Attempt& attempt);

/// Returns the record of the job with these attempts. `isBeingPrinted` says whether the process of
/// the last attempt is still printing the job.
JobRecord recordOf(const std::vector<Attempt>& attempts, bool isBeingPrinted);

/// Returns the current time in milliseconds since 1970, UTC.
std::int64_t millisecondsNow();

}  // namespace quordalvane
