#pragma once

#include <chrono>
#include <vector>

#include "discovery/FoundDevice.h"

namespace quordalvane {

/// Returns the printers that announce a raw port on the local network, ordered by name. The
/// function asks the system's discovery service, and listens for announcements until `limit` has
/// passed. `reachable` is true for a printer that answered in this time, and null for a printer
/// that the service remembers from an earlier announcement. The function never connects to an
/// address or a port. Throws a `std::exception` whose text says why the service could not be asked.
std::vector<FoundDevice> networkDevices(std::chrono::milliseconds limit);

}  // namespace quordalvane
