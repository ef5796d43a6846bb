#pragma once

#include <string>

#include <quordalvane/QuorExport.h>

#include "backends/DeviceSpec.h"

namespace quordalvane {

/// The text that distinguishes the device of `spec` from every other device of this machine,
/// whatever its keys: its scheme and its place, with all links of a path resolved and a host in
/// small letters. "" for the virtual printer, of which each process has its own. Two names of one
/// host, or a name and its address, are two devices.
QUOR_EXPORT std::string deviceIdentity(const DeviceSpec& spec);

}  // namespace quordalvane
