#pragma once

#include <string>

#include "backends/posix/Descriptor.h"

namespace quordalvane::bluez {

/// How long connecting may take in total. If a printer does not respond, the Bluetooth service
/// gives up after about six seconds and reports this.
inline constexpr std::chrono::milliseconds connectTimeout{10'000};

/// Connects to the serial port of the paired printer that `place` selects, as described at
/// `choosePrinter`. After that a thread watches the bus, and ends the connection if the Bluetooth
/// service stops. When the service starts again, it resets the adapter at an unknown time, which
/// would break the connection, perhaps in the middle of a job. The thread ends together with the
/// connection.
///
/// Throws a `std::system_error` with a code of `bluetoothCategory()` if there is no connection
/// within `timeout`.
posix::Descriptor connectBluetooth(const std::string& place,
                                   std::chrono::milliseconds timeout = connectTimeout);

}  // namespace quordalvane::bluez
