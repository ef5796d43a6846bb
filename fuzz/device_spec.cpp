#include <stdexcept>
#include <string>

#include "backends/DeviceSpec.h"
#include "backends/Devices.h"
#include "fuzz/FuzzTarget.h"
#include "fuzz/Text.h"
#include "tests/support/VirtualPlatform.h"

using namespace quordalvane;
using fuzz::require;

namespace {

std::string escaped(const std::string& text) {
  std::string result;
  for (const char c : text) {
    result += c == ',' || c == '\\' ? std::string{'\\', c} : std::string{c};
  }
  return result;
}

/// Writes the device text that a user would type for this device.
std::string written(const DeviceSpec& spec) {
  std::string text = spec.scheme + ":" + escaped(spec.place);
  const auto add = [&text](const char* key, const std::string& value) {
    text += std::string(",") + key + "=" + escaped(value);
  };
  add("name", spec.identity.name.value_or(""));
  add("manufacturer", spec.identity.manufacturer.value_or(""));
  add("address", spec.identity.address);
  for (const std::string& protocol : spec.identity.protocolStrings) {
    add("protocol", protocol);
  }
  return text;
}

void requireSame(const DeviceSpec& one, const DeviceSpec& other) {
  require(one.scheme == other.scheme && one.place == other.place);
  require(one.identity.name == other.identity.name);
  require(one.identity.manufacturer == other.identity.manufacturer);
  require(one.identity.address == other.identity.address);
  require(one.identity.protocolStrings == other.identity.protocolStrings);
}

}  // namespace

/// The input is a device text. Either it is refused with a printable message, or an accessory is
/// made for the device. In the second case the device must be the same after it is written as a
/// text and parsed again. Nothing is connected.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static test::VirtualPlatform platform;
  const std::string text(data, data + size);
  try {
    const DeviceSpec spec = parseDeviceSpec(text);
    if (spec.place.find('=') == std::string::npos) {
      requireSame(parseDeviceSpec(written(spec)), spec);
    }
    require(makeAccessory(spec, platform.clock())->isConnected());
  } catch (const std::invalid_argument& error) {
    require(fuzz::isHarmless(error.what()));
  }
  return 0;
}
