#pragma once

#include <string>

#include "tests/model/Scenario.h"

namespace quordalvane::test {

/// The longest time that a call may take by its contract, in virtual seconds: the sum of the times
/// of all its operations and waits. A wait may take the sum of its limit, one pause between two
/// checks, 0.1 s in the run loop, and one second, because limits are compared with whole seconds of
/// the wall clock. The length of each step that sets the clock back is added.
double mostSeconds(const Scenario& scenario, const Call& call);

/// The unbounded parts of a run: parts whose time the contract does not limit.
struct Exemption {
  std::string name;    // the name of the first unbounded part; "" if the run has none
  double seconds = 0;  // the time that all unbounded parts took together
};

/// Finds the unbounded parts of a run. Each is a loop, and a lost link ends it within one pass:
/// - The retrying writer repeats a command after an attempt that sent only some of its bytes. The
///   part ends when the writer returns.
/// - A stream reports that it is ready, but then transfers no byte or returns an impossible count.
///   The port tries again without a pause. The part ends when the port waits for something.
/// - In ESC/POS, `endCheckedBlock` reads a byte that is no status. The port requests the status
///   again without a pause. The part ends with the next byte or the next check of the time-out.
/// - In ESC/POS, `endCheckedBlock` reads and drops bytes as long as bytes arrive.
Exemption exemptionOf(const Outcome& outcome, const Call& call);

/// Returns "" if the run, without its unbounded parts, took no longer than `mostSeconds`; otherwise
/// a message with both times.
std::string overrun(const Scenario& scenario, const Call& call, const Outcome& outcome);

}  // namespace quordalvane::test
