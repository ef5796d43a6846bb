#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "backends/bluez/BluetoothError.h"
#include "backends/bluez/Bus.h"

namespace quordalvane::bluez {

/// The name of the Bluetooth service on the bus.
inline constexpr auto serviceName = "org.bluez";

/// The service class of devices that offer a serial port, such as printers.
inline constexpr auto serialPort = "00001101-0000-1000-8000-00805f9b34fb";

/// A device as the service describes it.
struct KnownDevice {
  std::string path;     ///< the path of the device's object on the bus
  std::string address;  ///< "01:23:45:67:89:AB"
  std::string name;     ///< the name that the user gave, or the device's own; any characters
  bool isPaired = false;
  bool hasSerialPort = false;
  bool mayBePrinter =
      false;  ///< false for a device of another class, such as a telephone or a headset
  bool isConnected = false;
  bool isAdapterOn = false;
};

/// Everything that the service reports at one moment.
struct Knowledge {
  bool hasAdapter = false;
  std::vector<KnownDevice> devices;  ///< ordered by address
};

/// Asks the service for all its adapters and devices. Throws a `std::system_error` with a code of
/// `bluetoothCategory()` if the service does not answer by `deadline`.
Knowledge askService(Bus& bus, SteadyTime deadline);

/// Returns the devices that are paired, offer a serial port, and have a class that a printer may
/// have.
std::vector<KnownDevice> pairedPrinters(const Knowledge& knowledge);

/// Returns the one paired printer that `place` selects. `place` is an address in upper or lower
/// case, a name, or "" for the only printer. If there is not exactly one such printer, throws a
/// `std::system_error` that says why.
KnownDevice choosePrinter(const Knowledge& knowledge, std::string_view place);

/// Throws a `std::system_error` for an error of the bus or of the service. The message contains the
/// text of that error.
[[noreturn]] void failAs(const sdbus::Error& error, const std::string& about);

}  // namespace quordalvane::bluez
