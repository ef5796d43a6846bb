#pragma once

#include "backends/posix/Descriptor.h"

namespace quordalvane::posix {

/// Ends the output and waits until the other side has taken the bytes under way, has ended its own
/// direction, or `deadline` has passed. Input is thrown away meanwhile.
///
/// A closed socket answers all later bytes with a reset, which also discards the bytes that the
/// system has not sent yet. A printer that reads slowly and reports now and then would thus lose
/// the rest of its job. After `deadline` that is so again: the system continues to send only as
/// long as the other side is silent.
void linger(const Descriptor& connection, SteadyTime deadline);

}  // namespace quordalvane::posix
