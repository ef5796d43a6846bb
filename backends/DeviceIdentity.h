#pragma once

#include <string>

#include <quordalvane/QuorExport.h>

#include "backends/DeviceSpec.h"

namespace quordalvane {

/// Returns a text that distinguishes the device of `spec` from every other device of this machine.
/// The text consists of the scheme and the place; the keys do not matter. All links of a path are
/// resolved, and a host is in lower case. Returns "" for the virtual printer, because each process
/// has its own virtual printer. Two names of one host count as two devices. A name and an address
/// of one host also count as two devices.
QUOR_EXPORT std::string deviceIdentity(const DeviceSpec& spec);

}  // namespace quordalvane
