#pragma once

#include <string>

#include "tests/model/Scenario.h"

namespace quordalvane::test {

/// The longest that a call may take by its contract, in virtual seconds: each wait its limit and a
/// second, since limits are whole seconds of the wall clock, one pause between two looks and one
/// slice, and the operations that it calls. A step back of the clock makes it longer by the step.
double mostSeconds(const Scenario& scenario, const Call& call);

/// The parts of a run that have no limit.
struct Exemption {
  std::string name;    // of the first such part of the run, or ""
  double seconds = 0;  // the time that all such parts took together
};

/// The parts of a run that have no bound; a lost link ends each of them within one pass:
/// - the retrying writer's repeat, after an attempt that moved a part of the command, until the
///   command is done with;
/// - a stream that says that it is ready and then moves no byte, or claims an impossible count,
///   until the port waits for something;
/// - the invalid-status loop: in ESC/POS a block's end asks again at once after a byte that is no
///   status, until the next byte or the next look at the time-out;
/// - the drain: in ESC/POS a block's end reads as long as bytes arrive.
Exemption exemptionOf(const Outcome& outcome, const Call& call);

/// "" if the run, without the parts that have no bound, took no longer than its limit; otherwise
/// its time and its limit.
std::string overrun(const Scenario& scenario, const Call& call, const Outcome& outcome);

}  // namespace quordalvane::test
