#pragma once

#include <string>
#include <system_error>

namespace quordalvane::bluez {

/// Why a Bluetooth printer cannot be reached.
enum class BluetoothError {
  NoBus = 1,      ///< the system's message bus is missing or has ended
  NoService,      ///< the Bluetooth service does not run
  NoAnswer,       ///< the Bluetooth service does not answer
  NoAdapter,      ///< the machine has no Bluetooth adapter
  AdapterOff,     ///< the adapter is switched off
  NotPaired,      ///< no printer with this address or name is paired
  Ambiguous,      ///< more than one paired printer matches
  NoSerialPort,   ///< the device offers no serial port, so it is not a receipt printer
  Rejected,       ///< the printer refused the connection
  NotAuthorized,  ///< nobody authorised the connection in time
  HostDown,       ///< the printer does not respond: it is off or out of range
  InUse,          ///< another program or another session uses the printer
  ProfileTaken,   ///< another program has registered the serial port profile
  Denied,         ///< this user may not use the Bluetooth service
  Failed,         ///< any other error of the service
};

/// Returns the error category of these codes. `InUse` and `ProfileTaken` are equivalent to
/// `std::errc::device_or_resource_busy`.
const std::error_category& bluetoothCategory();

/// Throws a `std::system_error` with the code `error` and a message for people that begins with
/// `text`.
[[noreturn]] void fail(BluetoothError error, const std::string& text);

}  // namespace quordalvane::bluez
