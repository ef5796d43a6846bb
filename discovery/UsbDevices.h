#pragma once

#include <vector>

#include "backends/posix/UsbPrinters.h"
#include "discovery/FoundDevice.h"

namespace quordalvane {

/// Returns the printers that the system's USB printer driver serves. A printer is reachable if this
/// process may open it. Its device text contains its serial number if this is unique and can be
/// written in a device text, and otherwise its device node.
std::vector<FoundDevice> usbDevices(const posix::UsbRoots& roots = {});

}  // namespace quordalvane
