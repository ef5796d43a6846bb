#pragma once

namespace quordalvane::tool {

/// Opens /dev/null on each descriptor from 0 to `last` that the parent process left closed.
/// Otherwise the next file that is opened, for example a printer, would get the number of a
/// standard stream. Standard input is opened for writing and the other streams for reading, so that
/// using them fails as it does on a closed stream.
void occupyDescriptors(int last);

/// Returns a new event descriptor, by which one thread wakes another that polls. `eventfd_write`
/// makes the descriptor readable, and `eventfd_read` makes it unreadable; neither function blocks.
/// The caller closes the descriptor. Throws std::system_error if the system has no descriptor left.
int openEvent();

}  // namespace quordalvane::tool
