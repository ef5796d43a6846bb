#include "discovery/BluetoothDevices.h"

#include "backends/SpecText.h"
#include "backends/bluez/Service.h"

namespace quordalvane {
namespace {

std::optional<bool> isReachable(const bluez::KnownDevice& printer) {
  if (!printer.isAdapterOn) {
    return false;
  }
  return printer.isConnected ? std::optional(true) : std::nullopt;
}

}  // namespace

std::vector<FoundDevice> bluetoothDevices(std::chrono::milliseconds limit) {
  const auto deadline = bluez::SteadyClock::now() + limit;
  bluez::Bus bus(deadline);
  std::vector<FoundDevice> devices;
  for (const auto& printer : pairedPrinters(askService(bus, deadline))) {
    devices.push_back({.device = spec::deviceText("bluetooth", shownText(printer.address)),
                       .name = shownText(printer.name.empty() ? printer.address : printer.name),
                       .serialNumber = "",
                       .maker = "",
                       .model = "",
                       .via = Via::Bluetooth,
                       .reachable = isReachable(printer)});
  }
  return devices;
}

}  // namespace quordalvane
