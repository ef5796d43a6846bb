#include "backends/Devices.h"

#include <atomic>
#include <stdexcept>
#include <utility>

#include "backends/Schemes.h"
#include "backends/posix/LinkAccessory.h"

namespace quordalvane {
namespace {

std::uint64_t nextId() {
  static std::atomic<std::uint64_t> last = 0;
  return ++last;
}

}  // namespace

std::shared_ptr<EAAccessory> makeAccessory(const DeviceSpec& spec, Clock& clock) {
  const Scheme* const scheme = findScheme(spec.scheme);
  if (scheme == nullptr) {
    throw std::invalid_argument("there is no back end for the scheme " + spec.scheme);
  }
  AccessoryIdentity identity = spec.identity;
  identity.connectionID = spec.id ? *spec.id : nextId();
  return scheme->make(spec, std::move(identity), clock);
}

std::vector<std::string> devicesMeantBy(const std::string& text) {
  const std::size_t colon = text.find(':');
  const Scheme* const scheme = findScheme(text.substr(0, colon));
  const std::string rest = colon == std::string::npos ? "" : text.substr(colon + 1);
  const bool hasPlace = !rest.empty() && rest.front() != ',';
  std::vector<std::string> devices;
  if (scheme != nullptr && scheme->places != nullptr && !hasPlace) {
    for (const std::string& place : scheme->places()) {
      std::string device(scheme->name);
      device += ':';
      device += place;
      device += rest;
      devices.push_back(std::move(device));
    }
  }
  return devices.empty() ? std::vector{text} : devices;
}

std::shared_ptr<posix::PosixPlatform> connectDevices(const std::vector<std::string>& specs) {
  auto platform = std::make_shared<posix::PosixPlatform>();
  for (const std::string& spec : specs) {
    for (const std::string& device : devicesMeantBy(spec)) {
      platform->attach(makeAccessory(parseDeviceSpec(device), platform->clock()));
    }
  }
  setProcessPlatform(platform);
  return platform;
}

std::string lastOpenError(EAAccessory& accessory) {
  auto* const link = dynamic_cast<posix::LinkAccessory*>(&accessory);
  return link != nullptr ? link->lastError() : "";
}

std::error_code lastOpenErrorCode(EAAccessory& accessory) {
  auto* const link = dynamic_cast<posix::LinkAccessory*>(&accessory);
  return link != nullptr ? link->lastErrorCode() : std::error_code();
}

std::string portState(EAAccessory& accessory) {
  auto* const link = dynamic_cast<posix::LinkAccessory*>(&accessory);
  return link != nullptr ? link->portState() : "";
}

}  // namespace quordalvane
