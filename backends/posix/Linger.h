#pragma once

#include "backends/posix/Descriptor.h"

namespace quordalvane::posix {

/// Ends the output and stays until the other side has taken what is under way, has ended its own
/// direction, or `deadline` has passed. Input is thrown away meanwhile.
///
/// A socket that is closed answers whatever still comes with a reset, which also takes back what
/// the system has not sent yet. So a printer that reads slowly and reports now and then would lose
/// the rest of its job. Once `deadline` has passed that is so again: the system goes on sending for
/// as long as the other side is silent.
void linger(const Descriptor& connection, SteadyTime deadline);

}  // namespace quordalvane::posix
