#include "fuzz/Input.h"
#include "iphone-IOPort/ExternalAccessoryPort.h"
#include "iphone-IOPort/PortName.h"
#include "iphone-IOPort/Util.h"
#include "tests/support/ScriptedLink.h"
#include "tests/support/VirtualPlatform.h"

using namespace quordalvane;
using fuzz::require;

namespace {

std::string inLowerCase(std::string text) {
  for (char& c : text) {
    if (c >= 'A' && c <= 'Z') {
      c = static_cast<char>(c + 32);
    }
  }
  return text;
}

bool isDesignated(const std::string& portName, EAAccessory& accessory) {
  if (inLowerCase(portName) == "bt:") {
    return true;
  }
  const auto prefix = prefixLength(portName);
  if (!prefix) {
    return false;
  }
  const std::string wanted = portName.substr(*prefix);
  const std::string address = Util::getMACAddressFromString(accessory.description());
  return accessory.name() == wanted || accessory.serialNumber() == wanted ||
         (!address.empty() && inLowerCase(address) == inLowerCase(wanted));
}

bool isPrinter(EAAccessory& accessory) {
  const std::string model = accessory.modelNumber().value_or("");
  const bool isOnACable = model.starts_with("KLT") && model.ends_with("-U");
  return !isOnACable && inLowerCase(accessory.manufacturer().value_or("")) == "quor dalvane";
}

}  // namespace

/// The input is texts, each ended by a zero byte: the port name, and an accessory's name, serial
/// number, model, maker and address. If the accessory is a printer and matches the port name, the
/// port must open it; otherwise the port must not open it.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  fuzz::Input input(data, size);
  const std::string portName = input.text();
  AccessoryIdentity identity;
  identity.name = input.text();
  identity.serialNumber = input.text();
  identity.modelNumber = input.text();
  if (const std::string maker = input.text(); !maker.empty()) {
    identity.manufacturer = maker;
  }
  identity.address = input.text();

  const auto platform = std::make_shared<test::VirtualPlatform>();
  const auto link = std::make_shared<test::ScriptedLink>(test::Script(), platform->virtualClock());
  const auto accessory = std::make_shared<test::ScriptedAccessory>(identity, link);
  platform->attach(accessory);
  const auto port = ExternalAccessoryPort::initWithPortName(portName, std::nullopt, 1000,
                                                            ZKEmulationQuorLine, platform);
  require(port != nullptr);
  const bool opened = port->open();
  require(opened == (isDesignated(portName, *accessory) && isPrinter(*accessory)));
  require(port->isConnected() == opened);
  require(port->name() == (opened ? identity.name : std::nullopt));
  port->close();
  require(!port->isConnected() && !port->name());
  return 0;
}
