#pragma once

namespace quordalvane::tool {

/// Fills each descriptor from 0 to `last` that the parent process left closed. Without this the
/// next file that is opened, a printer for example, would take the place of a standard stream. Each
/// is opened the wrong way round, so that using it fails as it would if it were closed.
void occupyDescriptors(int last);

/// A descriptor by which one thread wakes another that polls: readable from `eventfd_write` until
/// `eventfd_read`; neither blocks. The caller closes it. Throws std::system_error if the system has
/// none left.
int openEvent();

}  // namespace quordalvane::tool
