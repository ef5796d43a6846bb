#pragma once

#include <string>
#include <vector>

#include "backends/posix/Descriptor.h"

namespace quordalvane::posix {

enum class Parity { None, Even, Odd, Mark, Space };

/// Who may stop the bytes on their way to the printer.
enum class Flow {
  None,
  RtsCts,   ///< the printer, by a wire of the line
  XonXoff,  ///< the printer, by the bytes 13 and 11 (hex), which then never reach the reader
};

/// How a serial line is set. The defaults are those with which most receipt printers are delivered.
struct SerialSettings {
  unsigned baud = 9600;  ///< bits a second; any number that the line's hardware can run at
  unsigned bits = 8;     ///< data bits, 7 or 8
  Parity parity = Parity::None;
  unsigned stop = 1;  ///< stop bits, 1 or 2
  Flow flow = Flow::None;
};

/// The speeds that printers are usually set to, in bits a second and in rising order.
std::vector<unsigned> usualBaudRates();

/// Opens the serial line at `path`, raw and without becoming the controlling terminal, for this
/// program alone: it takes an advisory lock and puts the line into exclusive mode, and gives both
/// back at the close. The line keeps its settings when it is closed. Never waits for a modem.
///
/// Throws a `std::system_error` with a text for people: EBUSY and the program's name, if it can be
/// known, if another program or another descriptor of this one uses the line; ENOTTY if the file is
/// not a serial line; EINVAL if the line does not take the settings.
Descriptor openSerial(const std::string& path, const SerialSettings& settings = {});

}  // namespace quordalvane::posix
