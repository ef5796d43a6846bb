#pragma once

#include <string>

#include "backends/posix/Descriptor.h"

namespace quordalvane::bluez {

/// How long a connection may take in all. If a printer does not respond, the service itself gives
/// up after some six seconds, and reports that.
inline constexpr std::chrono::milliseconds connectTimeout{10'000};

/// Connects to the serial port of the paired printer that `place` chooses, as `choosePrinter`
/// states. From then on a thread watches the bus: it ends the connection if the Bluetooth service
/// leaves, because the next service resets the adapter at some time. The thread ends with the
/// connection.
///
/// Throws a `std::system_error` with a code of `bluetoothCategory()` if that does not succeed
/// within `timeout`.
posix::Descriptor connectBluetooth(const std::string& place,
                                   std::chrono::milliseconds timeout = connectTimeout);

}  // namespace quordalvane::bluez
