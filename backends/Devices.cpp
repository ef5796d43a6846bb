#include "backends/Devices.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <stdexcept>
#include <string_view>
#include <utility>

#include "backends/posix/Connect.h"
#include "backends/posix/LinkAccessory.h"
#include "backends/posix/Serial.h"
#include "backends/virtual/VirtualAccessory.h"

namespace quordalvane {
namespace {

using Accessory = std::shared_ptr<EAAccessory>;

Accessory makeVirtual(const DeviceSpec& spec, AccessoryIdentity identity, Clock& clock) {
  return virtuals::makePrinterAccessory(std::move(identity), spec.options, clock);
}

Accessory makeLink(AccessoryIdentity identity, posix::Connector connect) {
  return std::make_shared<posix::LinkAccessory>(std::move(identity), std::move(connect));
}

Accessory makeTcp(const DeviceSpec& spec, AccessoryIdentity identity, Clock& /*clock*/) {
  return makeLink(std::move(identity), [at = parseHostAndPort(spec.place)] {
    return posix::connectTcp(at.host, at.port);
  });
}

Accessory makeUnix(const DeviceSpec& spec, AccessoryIdentity identity, Clock& /*clock*/) {
  return makeLink(std::move(identity), [path = spec.place] { return posix::connectUnix(path); });
}

Accessory makeSerial(const DeviceSpec& spec, AccessoryIdentity identity, Clock& /*clock*/) {
  return makeLink(std::move(identity),
                  [path = spec.place, baud = spec.baud] { return posix::openSerial(path, baud); });
}

struct Maker {
  std::string_view scheme;
  Accessory (*make)(const DeviceSpec& spec, AccessoryIdentity identity, Clock& clock);
};

constexpr std::array makers = {
    Maker{"virtual", makeVirtual},
    Maker{"tcp", makeTcp},
    Maker{"unix", makeUnix},
    Maker{"serial", makeSerial},
};

std::uint64_t nextId() {
  static std::atomic<std::uint64_t> last = 0;
  return ++last;
}

}  // namespace

std::shared_ptr<EAAccessory> makeAccessory(const DeviceSpec& spec, Clock& clock) {
  const auto* const maker = std::find_if(makers.begin(), makers.end(), [&](const Maker& known) {
    return known.scheme == spec.scheme;
  });
  if (maker == makers.end()) {
    throw std::invalid_argument("there is no back end for the scheme " + spec.scheme);
  }
  AccessoryIdentity identity = spec.identity;
  identity.connectionID = spec.id ? *spec.id : nextId();
  return maker->make(spec, std::move(identity), clock);
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

}  // namespace quordalvane
