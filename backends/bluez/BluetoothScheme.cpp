#include "backends/bluez/BluetoothScheme.h"

#include <stdexcept>
#include <utility>

#include "backends/Schemes.h"
#include "backends/SpecText.h"
#include "backends/bluez/BluetoothAccessory.h"

namespace quordalvane {
namespace {

using bluez::bluetoothCategory;
using bluez::BluetoothError;

constexpr std::size_t longestPlace = 248;  // the maximum length of a device's name in bytes

constexpr int of(BluetoothError error) {
  return static_cast<int>(error);
}

constexpr OpenCause causes[] = {
    {of(BluetoothError::NoBus), "no-bus", "the system's message bus cannot be reached",
     "start the message bus: sudo systemctl start dbus; in a container, mount /run/dbus",
     bluetoothCategory},
    {of(BluetoothError::NoService), "no-service", "the Bluetooth service does not run",
     "install the package bluez and start the service: sudo systemctl start bluetooth",
     bluetoothCategory},
    {of(BluetoothError::NoAnswer), "no-answer-of-service", "the Bluetooth service does not answer",
     "restart the service: sudo systemctl restart bluetooth", bluetoothCategory},
    {of(BluetoothError::NoAdapter), "no-adapter", "the machine has no Bluetooth adapter",
     "plug an adapter in; list the adapters that the system sees: bluetoothctl list",
     bluetoothCategory},
    {of(BluetoothError::AdapterOff), "adapter-off", "the Bluetooth adapter is switched off",
     "switch the adapter on: rfkill unblock bluetooth, then bluetoothctl power on",
     bluetoothCategory},
    {of(BluetoothError::NotPaired), "not-paired", "no such printer is paired",
     "pair the printer: bluetoothctl scan on, then bluetoothctl pair ADDRESS and bluetoothctl "
     "trust ADDRESS",
     bluetoothCategory},
    {of(BluetoothError::Ambiguous), "ambiguous", "more than one paired printer matches this device",
     "name one of the printers by its address", bluetoothCategory},
    {of(BluetoothError::NoSerialPort), "no-serial-port", "the device offers no serial port",
     "check that the device is the printer; if so, switch it on, remove it by bluetoothctl remove "
     "ADDRESS, and pair it again",
     bluetoothCategory},
    {of(BluetoothError::Rejected), "rejected", "the printer refused the connection",
     "if another host is connected to the printer, end that connection; otherwise pair the printer "
     "again: bluetoothctl remove ADDRESS, then bluetoothctl pair ADDRESS",
     bluetoothCategory},
    {of(BluetoothError::NotAuthorized), "not-authorized",
     "the connection was not authorised in time",
     "confirm the connection on the screen of the printer or of this machine; to be asked no more, "
     "run: bluetoothctl trust ADDRESS",
     bluetoothCategory},
    {of(BluetoothError::HostDown), "out-of-range", "the printer does not answer over the air",
     "switch the printer on and bring it nearer; if another host is connected to it, end that "
     "connection",
     bluetoothCategory},
    {of(BluetoothError::InUse), "in-use", "another program uses the printer",
     "end the other program", bluetoothCategory},
    {of(BluetoothError::ProfileTaken), "profile-taken",
     "another program holds the serial port profile of the Bluetooth service",
     "end the other program, which may be a terminal or a modem manager", bluetoothCategory},
    {of(BluetoothError::Denied), "no-permission", "this user may not use the Bluetooth service",
     "join the group bluetooth and log in again: sudo usermod -aG bluetooth $USER",
     bluetoothCategory},
    {of(BluetoothError::Failed), "not-connected",
     "the Bluetooth service cannot connect to the printer",
     "switch the printer off and on only if nobody prints on it; journalctl -u bluetooth shows "
     "more",
     bluetoothCategory},
};

void checkPlace(const std::string& place) {
  if (!place.empty()) {
    spec::checkPath(place, longestPlace);
  }
}

std::shared_ptr<EAAccessory> make(const DeviceSpec& spec, AccessoryIdentity identity,
                                  Clock& /*clock*/) {
  // If the user gives no name, `identity.name` is a copy of `spec.place`. The printer's own name is
  // better, so this default is removed.
  if (identity.name == spec.place) {
    identity.name = std::nullopt;
  }
  return std::make_shared<bluez::BluetoothAccessory>(std::move(identity), spec.place);
}

std::vector<std::string> places() {
  std::vector<std::string> addresses;
  try {
    const auto deadline = bluez::SteadyClock::now() + std::chrono::seconds(3);
    bluez::Bus bus(deadline);
    for (const auto& printer : pairedPrinters(askService(bus, deadline))) {
      addresses.push_back(printer.address);
    }
  } catch (const std::system_error&) {
    // The error is ignored here, because the accessory of the device `bluetooth:` will report it.
  }
  return addresses;
}

constinit const Scheme bluetoothScheme = {
    .name = "bluetooth",
    .place = "",
    .about = "all paired Bluetooth printers; for one printer: bluetooth:ADDRESS or bluetooth:NAME",
    .checkPlace = checkPlace,
    .make = make,
    .ifSilent =
        "if another host is connected to the printer, end that connection; set the printer to the "
        "emulation that you have chosen; switch it off and on only if nobody prints on it",
    .ifNotUnderstood = "check that the device is the receipt printer",
    .causes = causes,
    .places = places,
};

}  // namespace

void addBluetoothScheme() {
  addScheme(bluetoothScheme);
}

}  // namespace quordalvane
