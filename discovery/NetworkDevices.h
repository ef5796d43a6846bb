#pragma once

#include <chrono>
#include <vector>

#include "discovery/FoundDevice.h"

namespace quordalvane {

/// The printers that announce a raw port on the local network, in the order of their names. It asks
/// the system's discovery service and listens for the whole of `limit`. A printer that answered in
/// that time is reachable; one that the service only remembers may not be. No address and no port
/// is tried. Throws a `std::exception` whose text says why the service could not be asked.
std::vector<FoundDevice> networkDevices(std::chrono::milliseconds limit);

}  // namespace quordalvane
