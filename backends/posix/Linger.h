#pragma once

#include "backends/posix/Descriptor.h"

namespace quordalvane::posix {

/// Ends the output, and waits until the other side has taken all sent bytes or has ended its own
/// output, but at most until `deadline`. Reads and discards all input during the wait.
///
/// Without this wait, a printer that reads slowly and sometimes sends a report could lose the rest
/// of its job. If a report arrives at a closed socket, the system answers with a reset, and
/// discards the bytes that it has not sent yet. This can still happen after `deadline`.
void linger(const Descriptor& connection, SteadyTime deadline);

}  // namespace quordalvane::posix
