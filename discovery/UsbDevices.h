#pragma once

#include <vector>

#include "backends/posix/UsbPrinters.h"
#include "discovery/FoundDevice.h"

namespace quordalvane {

/// Returns the printers that the system's USB printer driver serves. A printer is reachable if this
/// process may open it. The device text of a printer contains its serial number, if the number is
/// unique and can be written in a device text. Otherwise the device text contains the device node.
std::vector<FoundDevice> usbDevices(const posix::UsbRoots& roots = {});

}  // namespace quordalvane
