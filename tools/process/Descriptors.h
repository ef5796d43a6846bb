#pragma once

namespace quordalvane::tool {

/// Fills each descriptor from 0 to `last` that the parent process left closed. Without this the
/// next file that is opened, a printer for example, would take the place of a standard stream. Each
/// is opened the wrong way round, so that using it fails as it would if it were closed.
void occupyDescriptors(int last);

}  // namespace quordalvane::tool
