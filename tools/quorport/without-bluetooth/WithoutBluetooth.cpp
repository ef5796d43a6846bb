// Replaces the Bluetooth back end if its library is missing. The scheme `bluetooth:` still exists,
// but its use fails with an error that names the reason.
#include "backends/Schemes.h"
#include "backends/SpecText.h"
#include "backends/bluez/BluetoothScheme.h"

namespace quordalvane {
namespace {

[[noreturn]] void refuse() {
  spec::refuse("bluetooth: this program was built without Bluetooth, which needs libsdbus-c++-dev");
}

void checkPlace(const std::string& /*place*/) {
  refuse();
}

std::shared_ptr<EAAccessory> make(const DeviceSpec& /*spec*/, AccessoryIdentity /*identity*/,
                                  Clock& /*clock*/) {
  refuse();
}

constinit const Scheme bluetoothScheme = {
    .name = "bluetooth",
    .place = "",
    .about = "paired Bluetooth printers (not available: this program was built without Bluetooth)",
    .checkPlace = checkPlace,
    .make = make,
    .ifSilent = "",
    .ifNotUnderstood = "",
};

}  // namespace

void addBluetoothScheme() {
  addScheme(bluetoothScheme);
}

}  // namespace quordalvane
