#pragma once

#include <chrono>
#include <string>
#include <vector>

#include "discovery/SerialLines.h"
#include "discovery/UsbDevices.h"

namespace quordalvane {

/// The folders in which a search looks for devices of this machine. Tests use their own folders.
struct DiscoveryRoots {
  posix::UsbRoots usb;
  SerialRoots serial;
};

/// The result of a search.
struct Discovery {
  std::vector<FoundDevice> devices;

  /// One text for each kind of device that could not be searched for. Each text gives the reason,
  /// for people.
  std::vector<std::string> unsearched;
};

/// Finds the devices that could be printers: USB printers, paired Bluetooth printers, printers that
/// announce themselves on the network, and serial lines, in this order. Opens no device and sends
/// nothing to any device. The search takes two seconds, because it listens to the network for that
/// time. The search for Bluetooth printers runs at the same time, and also takes at most two
/// seconds.
///
///     for (const FoundDevice& found : discoverDevices().devices) {
///       std::cout << found.device << " is " << found.name << "\n";
///     }
///
/// Any thread may call the function, which runs two threads of its own.
Discovery discoverDevices(const DiscoveryRoots& roots = {});

}  // namespace quordalvane
