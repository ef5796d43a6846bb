#include "discovery/Discovery.h"

#include <iterator>

namespace quordalvane {

Discovery discoverDevices(const DiscoveryRoots& roots) {
  Discovery discovery{.devices = usbDevices(roots.usb), .unsearched = {}};
  std::vector<FoundDevice> lines = serialLines(roots.serial);
  std::move(lines.begin(), lines.end(), std::back_inserter(discovery.devices));
  return discovery;
}

}  // namespace quordalvane
