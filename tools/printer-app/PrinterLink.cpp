#include "tools/printer-app/PrinterLink.h"

#include "backends/DeviceIdentity.h"
#include "backends/Devices.h"
#include "locks/DeviceLock.h"
#include "tools/printer-app/Model.h"

namespace quordalvane::printer_app {
namespace {

constexpr std::uint32_t timeoutMillis = 10000;

}  // namespace

Turn takeTurn(const std::string& device, std::chrono::milliseconds limit) {
  const std::string identity = deviceIdentity(parseDeviceSpec(device));
  if (identity.empty()) {
    return {.isTaken = true, .lock = std::nullopt};
  }
  auto lock = takeDevice(identity, limit);
  const bool isTaken = lock.has_value();
  return {.isTaken = isTaken, .lock = std::move(lock)};
}

PrinterLink::PrinterLink(const std::string& device, const std::string& model) {
  const auto platform = std::make_shared<posix::PosixPlatform>();
  accessory_ = makeAccessory(parseDeviceSpec(device), platform->clock());
  platform->attach(accessory_);
  const Model* const known = modelNamed(model);
  port_ = ExternalAccessoryPort::initWithPortName(
      "BT:", "", timeoutMillis, known == nullptr ? ZKEmulationESCPOS : known->emulation, platform);
  isOpen_ = port_ != nullptr && port_->open();
}

PrinterLink::~PrinterLink() {
  if (port_ != nullptr) {
    port_->close();
  }
}

std::string PrinterLink::error() const {
  return lastOpenError(*accessory_);
}

}  // namespace quordalvane::printer_app
