#pragma once

#include <chrono>
#include <vector>

#include "discovery/FoundDevice.h"

namespace quordalvane {

/// The printers that are paired with this machine, in the order of their addresses. A printer that
/// is connected now is reachable; while the adapter is off, none is. Nothing is connected. Throws a
/// `std::exception` whose text says why the service could not be asked within `limit`.
std::vector<FoundDevice> bluetoothDevices(std::chrono::milliseconds limit);

}  // namespace quordalvane
