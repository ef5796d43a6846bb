#pragma once

#include <chrono>
#include <string>
#include <vector>

#include "discovery/SerialLines.h"
#include "discovery/UsbDevices.h"

namespace quordalvane {

/// The folders in which a search looks for devices of this machine; a test has its own.
struct DiscoveryRoots {
  posix::UsbRoots usb;
  SerialRoots serial;
};

/// The result of a search.
struct Discovery {
  std::vector<FoundDevice> devices;

  /// The ways that could not be searched, each a line for people that says why.
  std::vector<std::string> unsearched;
};

/// Finds the devices that could be printers: USB printers, paired Bluetooth printers, printers that
/// announce themselves on the network, and serial lines, in this order. Opens none of them and
/// sends nothing to any of them. Takes two seconds, in which it listens to the network; the search
/// for Bluetooth printers has the same limit.
///
///     for (const FoundDevice& found : discoverDevices().devices) {
///       std::cout << found.device << " is " << found.name << "\n";
///     }
///
/// May be called from any thread; uses two of its own meanwhile.
Discovery discoverDevices(const DiscoveryRoots& roots = {});

}  // namespace quordalvane
