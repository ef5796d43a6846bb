#pragma once

#include <vector>

#include "backends/posix/UsbPrinters.h"
#include "discovery/FoundDevice.h"

namespace quordalvane {

/// The printers at the system's USB printer driver. One is reachable if this process may open it.
/// Each is named by its serial number, if no other has the same and a device text can hold it;
/// otherwise by its node.
std::vector<FoundDevice> usbDevices(const posix::UsbRoots& roots = {});

}  // namespace quordalvane
