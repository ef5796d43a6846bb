// Chooses the accessory, opens and closes the session on it, and tests whether the port is
// connected.

#include <algorithm>
#include <stdexcept>

#include "iphone-IOPort/ExternalAccessoryPort.h"
#include "iphone-IOPort/Guarded.h"
#include "iphone-IOPort/LogStatement.h"
#include "iphone-IOPort/PortName.h"
#include "iphone-IOPort/Util.h"
#include "text/LetterCase.h"

namespace quordalvane {
namespace {

constexpr auto open71Selector = "-[ExternalAccessoryPort open71]";

/// Returns the part of a port name that selects the accessory; null if the name allows any
/// accessory.
std::optional<std::string> designationIn(const std::optional<std::string>& portName) {
  if (!portName || equalIgnoringCase(*portName, "BT:")) {
    return std::nullopt;
  }
  const auto prefix = prefixLength(*portName);
  if (!prefix) {
    throw std::out_of_range(tooShort(*portName));
  }
  return portName->substr(*prefix);
}

}  // namespace

void ExternalAccessoryPort::open71() {
  constexpr auto selector = open71Selector;
  QUOR_LOG(ZKLogTypeInternalMethodStart, 0, "%@", "");
  bool isOpen = false;
  guarded(
      [&] {
        selectAccessory();
        isOpen = openSession();
      },
      [this] { QUOR_LOG(ZKLogTypeError, 0, "%@", thrownText()); });
  setResult71(isOpen);
  QUOR_LOG(ZKLogTypeInternalMethodEnd, 0, "%@", "");
}

void ExternalAccessoryPort::selectAccessory() {
  constexpr auto selector = open71Selector;
  const auto specifiedPortName = designationIn(portName_);
  QUOR_LOG(ZKLogTypeProcess, 0, "specifiedPortName: %@", specifiedPortName);
  const auto accessoryArray = platform_->sharedAccessoryManager().connectedAccessories();
  // The session of an earlier `open` may still be open. It is released together with its accessory,
  // so that nothing uses it any more.
  _session.set(nullptr);
  _selectedAccessory.set(nullptr);
  const auto chosen = std::find_if(
      accessoryArray.begin(), accessoryArray.end(),
      [&](const auto& accessory) { return isEligible(*accessory, specifiedPortName); });
  if (chosen != accessoryArray.end()) {
    adoptAccessory(*chosen);
  }
}

bool ExternalAccessoryPort::isEligible(EAAccessory& accessory,
                                       const std::optional<std::string>& specifiedPortName) {
  constexpr auto selector = open71Selector;
  QUOR_LOG(ZKLogTypeProcess, 0, "%@", accessory.description());
  const auto modelNumber = accessory.modelNumber();
  if (modelNumber && modelNumber->starts_with("KLT") && Util::isUsbDevice(*modelNumber)) {
    QUOR_LOG(ZKLogTypeProcess, 0, "%@ is UsbDevice", modelNumber);
    return false;
  }
  if (specifiedPortName && !isDesignated(accessory, *specifiedPortName)) {
    return false;
  }
  const auto manufacturer = accessory.manufacturer();
  if (!manufacturer || !equalIgnoringCase(*manufacturer, "quor dalvane")) {
    QUOR_LOG(ZKLogTypeProcess, 0,
             "[accessory.manufacturer caseInsensitiveCompare:@\"quor dalvane\"] != NSOrderedSame, "
             "%@",
             manufacturer);
    return false;
  }
  const auto protocolStrings = accessory.protocolStrings();
  if (std::find(protocolStrings.begin(), protocolStrings.end(), quorProtocol) ==
      protocolStrings.end()) {
    QUOR_LOG(ZKLogTypeProcess, 0,
             "[accessory.protocolStrings indexOfObject:quorProtocol] == NSNotFound, %@, %@",
             protocolStrings, quorProtocol);
    return false;
  }
  return true;
}

bool ExternalAccessoryPort::isDesignated(EAAccessory& accessory,
                                         const std::string& specifiedPortName) {
  constexpr auto selector = open71Selector;
  const auto accessoryName = accessory.name();
  if (accessoryName == specifiedPortName) {
    return true;
  }
  QUOR_LOG(ZKLogTypeProcess, 0, "[accessory.name isEqualToString:specifiedPortName] == NO, %@, %@",
           accessoryName, specifiedPortName);
  const auto accessorySerialNumber = accessory.serialNumber();
  if (accessorySerialNumber == specifiedPortName) {
    return true;
  }
  QUOR_LOG(ZKLogTypeProcess, 0,
           "[accessory.serialNumber isEqualToString:specifiedPortName] == NO, %@, %@",
           accessorySerialNumber, specifiedPortName);
  return hasSpecifiedAddress(accessory, specifiedPortName);
}

bool ExternalAccessoryPort::hasSpecifiedAddress(EAAccessory& accessory,
                                                const std::string& specifiedPortName) {
  constexpr auto selector = open71Selector;
  const auto specifiedMACAddr = Util::getMACAddressFromString(specifiedPortName);
  QUOR_LOG(ZKLogTypeProcess, 0, "specifiedMACAddr: %@", specifiedMACAddr);
  if (specifiedMACAddr.empty()) {
    QUOR_LOG(ZKLogTypeProcess, 0, "[specifiedMACAddr isEqualToString:@\"\"], %@", specifiedMACAddr);
    return false;
  }
  if (specifiedMACAddr != specifiedPortName) {
    QUOR_LOG(ZKLogTypeProcess, 0,
             "[specifiedMACAddr isEqualToString:specifiedPortName] == NO, %@, %@", specifiedMACAddr,
             specifiedPortName);
    return false;
  }
  auto& manager = platform_->sharedAccessoryManager();
  const auto accessoryMACAddr = Util::isSet(manager)
                                    ? Util::getMACAddressFromSpecifiedMethod(manager, accessory)
                                    : Util::getMACAddressFromString(accessory.description());
  if (accessoryMACAddr.empty()) {
    QUOR_LOG(ZKLogTypeProcess, 0, "[accessoryMACAddr isEqualToString:@\"\"], %@", accessoryMACAddr);
    return false;
  }
  if (!equalIgnoringCase(accessoryMACAddr, specifiedMACAddr)) {
    QUOR_LOG(ZKLogTypeProcess, 0,
             "[accessoryMACAddr compare:specifiedMACAddr options:NSCaseInsensitiveSearch] != "
             "NSOrderedSame, %@, %@",
             accessoryMACAddr, specifiedMACAddr);
    return false;
  }
  return true;
}

void ExternalAccessoryPort::adoptAccessory(const std::shared_ptr<EAAccessory>& accessory) {
  constexpr auto selector = open71Selector;
  const auto modelNumber = accessory->modelNumber();
  if (modelNumber == "XQ700") {
    QUOR_LOG(ZKLogTypeProcess, 0, "[accessory.modelNumber isEqualToString:@\"XQ700\"], %@",
             modelNumber);
    _isBrondel = true;
  }
  _selectedAccessory.set(accessory);
  setConnectionID(accessory->connectionID());
  setName(accessory->name());
  setSerialNumber(accessory->serialNumber());
}

bool ExternalAccessoryPort::openSession() {
  constexpr auto selector = open71Selector;
  const auto accessory = _selectedAccessory.get();
  if (accessory == nullptr) {
    QUOR_LOG(ZKLogTypeError, 0, "_selectedAccessory == nil, %p", nullptr);
    return false;
  }
  const auto session = accessory->openSession(std::string(quorProtocol));
  _session.set(session);
  if (session == nullptr) {
    QUOR_LOG(ZKLogTypeError, 0, "_session == nil, %@", std::optional<std::string>());
    return false;
  }
  openStream(*session->inputStream());
  openStream(*session->outputStream());
  return true;
}

void ExternalAccessoryPort::openStream(NSStream& stream) {
  stream.setDelegate(weak_from_this());
  stream.scheduleInRunLoop(platform_->currentRunLoop(), NSDefaultRunLoopMode);
  stream.open();
}

void ExternalAccessoryPort::closeStream(NSStream& stream) {
  stream.close();
  stream.removeFromRunLoop(platform_->currentRunLoop(), NSDefaultRunLoopMode);
  stream.setDelegate({});
}

void ExternalAccessoryPort::abandonOutput() {
  if (const auto session = _session.get()) {
    session->abandon();
  }
}

void ExternalAccessoryPort::close71() {
  constexpr auto selector = "-[ExternalAccessoryPort close71]";
  QUOR_LOG(ZKLogTypeInternalMethodStart, 0, "%@", "");
  guarded(
      [this] {
        if (const auto session = _session.get()) {
          closeStream(*session->outputStream());
          closeStream(*session->inputStream());
        }
      },
      [this] { QUOR_LOG(ZKLogTypeError, 0, "%@", thrownText()); });
  // The next lines also run if a stream has thrown an exception: the port counts as closed in any
  // case.
  _session.set(nullptr);
  _selectedAccessory.set(nullptr);
  setConnectionID(0);
  const std::optional<std::string> none;
  setName(none);
  setSerialNumber(none);
  QUOR_LOG(ZKLogTypeInternalMethodEnd, 0, "%@", "");
}

bool ExternalAccessoryPort::isConnected() {
  constexpr auto selector = "-[ExternalAccessoryPort isConnected]";
  QUOR_LOG(ZKLogTypeInternalMethodStart, 0, "%@", "");
  const auto accessory = _selectedAccessory.get();
  if (accessory == nullptr) {
    QUOR_LOG(ZKLogTypeError, 0, "_selectedAccessory == nil, %p", nullptr);
    QUOR_LOG(ZKLogTypeInternalMethodEnd, 0, "-> %d", 0);
    return false;
  }
  const bool connected = accessory->isConnected();
  QUOR_LOG(ZKLogTypeInternalMethodEnd, 0, "-> %d", connected);
  return connected;
}

}  // namespace quordalvane
