#pragma once

#include <string>
#include <vector>

#include "backends/posix/Descriptor.h"

namespace quordalvane::posix {

enum class Parity { None, Even, Odd, Mark, Space };

/// How a printer can stop the flow of bytes that it receives.
enum class Flow {
  None,
  RtsCts,   ///< the printer switches a wire of the serial line
  XonXoff,  ///< the printer sends 13 (hex) to stop, 11 (hex) to continue; no read returns them
};

/// The settings of a serial line. The defaults are the factory settings of most receipt printers.
struct SerialSettings {
  unsigned baud = 9600;  ///< bits per second; any speed that the hardware of the line supports
  unsigned bits = 8;     ///< data bits, 7 or 8
  Parity parity = Parity::None;
  unsigned stop = 1;  ///< stop bits, 1 or 2
  Flow flow = Flow::None;
};

/// Returns the usual speeds of printers, in bits per second and in rising order.
std::vector<unsigned> usualBaudRates();

/// Opens the serial line at `path` in raw mode, for exclusive use by this program. To reserve the
/// line, the function takes an advisory lock and sets the line to exclusive mode. The lock and the
/// mode end when the line is closed. The line does not become the controlling terminal. The line
/// keeps its settings after it is closed. Never waits for a modem.
///
/// Throws a `std::system_error` with a message for people. The code is EBUSY if another program, or
/// another descriptor of this program, uses the line; the message then names the other program, if
/// it is known. The code is ENOTTY if the file is not a serial line, and EINVAL if the line does
/// not support the settings.
Descriptor openSerial(const std::string& path, const SerialSettings& settings = {});

}  // namespace quordalvane::posix
