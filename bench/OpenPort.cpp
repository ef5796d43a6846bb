#include "bench/OpenPort.h"

#include <stdexcept>

#include "backends/Devices.h"

namespace quordalvane::bench {

std::shared_ptr<ExternalAccessoryPort> makePort(const std::string& device, ZKEmulation emulation) {
  constexpr std::uint32_t timeoutMillis = 10000;
  const auto platform = std::make_shared<posix::PosixPlatform>();
  platform->attach(makeAccessory(parseDeviceSpec(device), platform->clock()));
  return ExternalAccessoryPort::initWithPortName("BT:", "", timeoutMillis, emulation, platform);
}

OpenPort::OpenPort(const std::string& device, ZKEmulation emulation)
    : port_(makePort(device, emulation)) {
  if (!port_->open()) {
    throw std::runtime_error("cannot open " + device);
  }
}

OpenPort::~OpenPort() {
  port_->close();
}

void OpenPort::getStatus() {
  QuorPrinterStatus_2 status{};
  if (!port_->getParsedStatus(&status, 2)) {
    throw std::runtime_error("no status");
  }
}

}  // namespace quordalvane::bench
