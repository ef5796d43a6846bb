#pragma once

#include <string>

#include "tests/model/Scenario.h"

namespace quordalvane::test {

/// Returns the longest time that a call may take by its contract, in virtual seconds. This is the
/// sum of the times of its operations and waits. A wait may exceed its limit by the sum of:
/// - one pause between two checks,
/// - 0.1 s in the run loop,
/// - one second, if the limit is compared with whole seconds of the wall clock.
/// If the scenario sets the clock back, the length of each of these steps is added to the sum.
double mostSeconds(const Scenario& scenario, const Call& call);

/// The parts of a run whose time the contract does not limit.
struct Exemption {
  std::string name;    // the name of the first of these parts; "" if there is no such part
  double seconds = 0;  // the time that all these parts took together
};

/// Finds the parts of a run whose time the contract does not limit. Each of these parts is a loop.
/// If the link is lost, the loop ends within one pass. The loops are:
/// - The retrying writer repeats a command after an attempt that sent only some of its bytes. The
///   part ends when the writer returns.
/// - A stream reports that it is ready, but then transfers no byte or returns an impossible count.
///   The port tries again without a pause. The part ends when the port waits for something.
/// - In ESC/POS, `endCheckedBlock` reads a byte that is no status. The port requests the status
///   again without a pause. The part ends with the next byte or the next check of the time-out.
/// - In ESC/POS, `endCheckedBlock` reads and drops bytes as long as bytes arrive.
Exemption exemptionOf(const Outcome& outcome, const Call& call);

/// Returns "" if the run, without the parts that `exemptionOf` finds, took no longer than
/// `mostSeconds`; otherwise a message with these times.
std::string overrun(const Scenario& scenario, const Call& call, const Outcome& outcome);

}  // namespace quordalvane::test
