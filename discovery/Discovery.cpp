#include "discovery/Discovery.h"

#include <exception>
#include <future>
#include <iterator>
#include <utility>

#include "discovery/BluetoothDevices.h"
#include "discovery/NetworkDevices.h"

namespace quordalvane {
namespace {

constexpr std::chrono::seconds limit{2};

struct Findings {
  std::vector<FoundDevice> devices;
  std::string error;
};

using Searcher = std::vector<FoundDevice> (*)(std::chrono::milliseconds limit);

Findings search(Searcher searcher) {
  try {
    return {.devices = searcher(limit), .error = ""};
  } catch (const std::exception& error) {
    return {.devices = {}, .error = error.what()};
  }
}

void append(Discovery& discovery, std::vector<FoundDevice> devices) {
  std::move(devices.begin(), devices.end(), std::back_inserter(discovery.devices));
}

void append(Discovery& discovery, const std::string& way, Findings findings) {
  append(discovery, std::move(findings.devices));
  if (!findings.error.empty()) {
    discovery.unsearched.push_back(way + " was not searched: " + shownText(findings.error));
  }
}

}  // namespace

Discovery discoverDevices(const DiscoveryRoots& roots) {
  auto bluetooth = std::async(std::launch::async, search, bluetoothDevices);
  auto network = std::async(std::launch::async, search, networkDevices);
  Discovery discovery{.devices = usbDevices(roots.usb), .unsearched = {}};
  append(discovery, "Bluetooth", bluetooth.get());
  append(discovery, "the network", network.get());
  append(discovery, serialLines(roots.serial));
  return discovery;
}

}  // namespace quordalvane
