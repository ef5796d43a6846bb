#pragma once

#include <string>

#include <quordalvane/QuorExport.h>

#include "backends/DeviceSpec.h"

namespace quordalvane {

/// Returns a text that distinguishes the device of `spec` from every other device of this machine.
/// The text consists of the scheme of `spec` and the path or address of the device, for example
/// `tcp:kitchen:9100`. The keys of `spec` have no effect. All symbolic links of a path are
/// resolved, and an address is in lower case. Returns "" for the virtual printer, because each
/// process has its own virtual printer, and for an unknown scheme. Two names of one host, or a name
/// and an address of one host, count as two devices.
QUOR_EXPORT std::string deviceIdentity(const DeviceSpec& spec);

}  // namespace quordalvane
