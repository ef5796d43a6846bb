#include "journal/History.h"

#include <algorithm>
#include <chrono>

#include "job/PrintResult.h"
#include "job/Words.h"

namespace quordalvane {

const Attempt& decisive(const std::vector<Attempt>& attempts) {
  for (const JobState state : {JobState::Printed, JobState::Unconfirmed}) {
    const auto found = std::find_if(attempts.rbegin(), attempts.rend(),
                                    [&](const Attempt& each) { return stateOf(each) == state; });
    if (found != attempts.rend()) {
      return *found;
    }
  }
  return attempts.back();
}

JobState stateOf(const Attempt& attempt) {
  if (attempt.outcome == nameOf(PrintOutcome::Printed)) {
    return JobState::Printed;
  }
  if (attempt.outcome == nameOf(PrintOutcome::Refused)) {
    return JobState::Refused;
  }
  return JobState::Unconfirmed;
}

std::string reasonOf(const Attempt& attempt) {
  return attempt.outcome.empty() ? "the process that printed the job ended too early; up to " +
                                       grouped(attempt.data.bytes) + " bytes were sent"
                                 : attempt.reason;
}

ProofKind proofOf(const Attempt& attempt) {
  return proofNamed(attempt.proof).value_or(ProofKind::Auto);
}

JobRecord recordOf(const std::vector<Attempt>& attempts, bool isBeingPrinted) {
  const Attempt& decided = isBeingPrinted ? attempts.back() : decisive(attempts);
  JobRecord record;
  record.name = decided.name;
  record.device = decided.device;
  record.bytes = decided.data.bytes;
  record.attempts = attempts.back().number;
  record.begun = decided.begun;
  record.ended = decided.ended;
  record.state = isBeingPrinted ? JobState::Printing : stateOf(decided);
  record.reason = isBeingPrinted ? "the job is being printed" : reasonOf(decided);
  return record;
}

std::int64_t millisecondsNow() {
  const auto now = std::chrono::system_clock::now().time_since_epoch();
  return std::chrono::duration_cast<std::chrono::milliseconds>(now).count();
}

}  // namespace quordalvane
