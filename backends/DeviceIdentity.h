#pragma once

#include <string>

#include <quordalvane/QuorExport.h>

#include "backends/DeviceSpec.h"

namespace quordalvane {

/// What tells the device of `spec` from every other device of this machine, whatever keys the text
/// has: its scheme and its place, a path through all links and a host in small letters. "" for the
/// printer that is built in, of which each process has its own. Two names of one host, or a name
/// and its address, are two devices.
QUOR_EXPORT std::string deviceIdentity(const DeviceSpec& spec);

}  // namespace quordalvane
