#pragma once

#include "backends/posix/Descriptor.h"

namespace quordalvane::posix {

/// Ends the output and waits until the other side has taken the bytes under way or has ended its
/// own output, or until `deadline` has passed. Drops all input during the wait.
///
/// Without this wait, a printer that reads slowly and sometimes sends a report could lose the rest
/// of its job: a closed socket answers received bytes with a reset, which also discards the bytes
/// that the system has not sent yet. The same can happen after `deadline`, if the other side then
/// sends a byte.
void linger(const Descriptor& connection, SteadyTime deadline);

}  // namespace quordalvane::posix
