#pragma once

#include <string>

#include "tests/model/Scenario.h"

namespace quordalvane::test {

/// The longest time that a call may take by its contract, in virtual seconds. The time is the sum
/// of the operations that the call uses and of its waits. A wait may take its limit, a second more
/// (limits are whole seconds of the wall clock), one pause between two checks and one run-loop
/// slice. If the clock is set back, the time grows by that step.
double mostSeconds(const Scenario& scenario, const Call& call);

/// The parts of a run that have no limit.
struct Exemption {
  std::string name;    // the name of the first such part of the run, or ""
  double seconds = 0;  // the time that all such parts took together
};

/// The parts of a run that have no bound; a lost link ends each of them within one pass:
/// - the retrying writer, from an attempt that sent a part of the command until the writer returns;
/// - a stream that reports that it is ready and then transfers no byte, or returns an impossible
///   count, until the port waits for something;
/// - in ESC/POS, the end of a block after a byte that is no status: the port requests the status
///   again at once, until the next byte or the next check of the time-out;
/// - in ESC/POS, the end of a block while bytes arrive: the port reads all of them.
Exemption exemptionOf(const Outcome& outcome, const Call& call);

/// "" if the run, without the parts that have no bound, took no longer than its limit; otherwise
/// its time and its limit.
std::string overrun(const Scenario& scenario, const Call& call, const Outcome& outcome);

}  // namespace quordalvane::test
