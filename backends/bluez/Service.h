#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "backends/bluez/BluetoothError.h"
#include "backends/bluez/Bus.h"

namespace quordalvane::bluez {

/// The Bluetooth service's name on the bus.
inline constexpr auto serviceName = "org.bluez";

/// The service class of devices that offer a serial port, as printers do.
inline constexpr auto serialPort = "00001101-0000-1000-8000-00805f9b34fb";

/// A device as the service describes it.
struct KnownDevice {
  std::string path;     ///< of its object on the bus
  std::string address;  ///< "01:23:45:67:89:AB"
  std::string name;     ///< the one that the user gave it, or its own; may hold anything
  bool isPaired = false;
  bool hasSerialPort = false;
  bool mayBePrinter = false;  ///< false for one of another class: a telephone, a headset
  bool isConnected = false;
  bool isAdapterOn = false;
};

/// All that the service knows now.
struct Knowledge {
  bool hasAdapter = false;
  std::vector<KnownDevice> devices;  ///< in the order of their addresses
};

/// Asks the service. Throws a `std::system_error` with a code of `bluetoothCategory()` if it does
/// not answer by `deadline`.
Knowledge askService(Bus& bus, SteadyTime deadline);

/// Paired, with a serial port, and of a class that a printer may have.
std::vector<KnownDevice> pairedPrinters(const Knowledge& knowledge);

/// The one printer that `place` chooses among them: an address in upper or lower case, a name, or
/// "" for the only one. Throws a `std::system_error` that says why there is none.
KnownDevice choosePrinter(const Knowledge& knowledge, std::string_view place);

/// Throws the `std::system_error` that an error of the bus or of the service means, with the
/// service's own words.
[[noreturn]] void failAs(const sdbus::Error& error, const std::string& about);

}  // namespace quordalvane::bluez
