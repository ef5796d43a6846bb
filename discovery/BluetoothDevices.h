#pragma once

#include <chrono>
#include <vector>

#include "discovery/FoundDevice.h"

namespace quordalvane {

/// Returns the printers that are paired with this machine, ordered by address. Does not connect to
/// any printer. `reachable` is true for a printer that is connected now, and false for all printers
/// while the adapter is off. Throws a `std::exception` whose text says why the Bluetooth service
/// could not be asked within `limit`.
std::vector<FoundDevice> bluetoothDevices(std::chrono::milliseconds limit);

}  // namespace quordalvane
