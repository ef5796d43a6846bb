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

std::shared_ptr<posix::PosixPlatform> connectDevices(const std::vector<std::string>& specs) {
  auto platform = std::make_shared<posix::PosixPlatform>();
  for (const std::string& spec : specs) {
    platform->attach(makeAccessory(parseDeviceSpec(spec), platform->clock()));
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

}  // namespace quordalvane
