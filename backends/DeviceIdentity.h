#pragma once

#include <string>

#include <quordalvane/QuorExport.h>

#include "backends/DeviceSpec.h"

namespace quordalvane {

/// Returns a text that distinguishes the device of `spec` from every other device of this machine.
/// It consists of the scheme and the place; the keys do not matter. All links of a path are
/// resolved, and a host is in lower case. Returns "" for the virtual printer, because each process
/// has its own. Two names of one host count as two devices, and so do its name and its address.
QUOR_EXPORT std::string deviceIdentity(const DeviceSpec& spec);

}  // namespace quordalvane
