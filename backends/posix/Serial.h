#pragma once

#include <string>
#include <vector>

#include "backends/posix/Descriptor.h"

namespace quordalvane::posix {

/// What most receipt printers are delivered with.
inline constexpr unsigned defaultBaudRate = 9600;

/// The rates, in bits a second, that a serial line can be opened with, in rising order.
std::vector<unsigned> baudRates();

/// Opens the serial line at `path`: raw, 8 data bits, no parity, 1 stop bit, no flow control,
/// without becoming the controlling terminal. The line keeps these settings when it is closed.
///
/// Raises a `std::exception` with a text for people when `path` is no serial line or cannot be
/// opened, which is a `std::system_error`, or `baud` is not one of `baudRates()`. Never waits for a
/// modem to answer.
Descriptor openSerial(const std::string& path, unsigned baud = defaultBaudRate);

}  // namespace quordalvane::posix
