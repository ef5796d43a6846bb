#pragma once

#include <string>

#include <quordalvane/QuorExport.h>

#include "backends/DeviceSpec.h"

namespace quordalvane {

/// Returns a text that distinguishes the device of `spec` from every other device of this machine.
/// The text consists of the scheme and the place of `spec`; the keys of `spec` have no effect. All
/// symbolic links of a path are resolved, and a host is in lower case. Returns "" for the virtual
/// printer, because each process has its own virtual printer. Two names of one host, or a name and
/// an address of one host, count as two devices.
QUOR_EXPORT std::string deviceIdentity(const DeviceSpec& spec);

}  // namespace quordalvane
