#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "iphone-IOPort/enum.h"

namespace quordalvane::cups {

/// The content of a queue's URI: the printer, and how jobs are printed on it.
///
/// | URI | device |
/// |---|---|
/// | `quor:/tcp/192.0.2.10:9100?name=Kitchen` | `tcp:192.0.2.10:9100,name=Kitchen` |
/// | `quor:/serial/dev/ttyUSB0?baud=9600` | `serial:/dev/ttyUSB0,baud=9600` |
/// | `quor:/usb/SERIAL`, `quor:/usb` | `usb:SERIAL`, `usb:` |
/// | `quor:` and the text of a device | that device |
///
/// A percent sign with two hex digits, like `%41`, stands for the character with this code. A
/// comma, a slash or a question mark that is written in this way is data, not a separator. The
/// query takes the keys of the device, and also `emulation`, `timeout`, `end-timeout` and `copies`,
/// which set the members below.
struct DeviceUri {
  std::string device;  ///< the device text, as `parseDeviceSpec` reads it

  ZKEmulation emulation = ZKEmulationQuorLine;  ///< `line` or `escpos`
  std::uint32_t timeout = 10000;                ///< milliseconds, for input and output
  std::optional<std::uint32_t> endTimeout;      ///< milliseconds, for the confirmation

  /// True for `copies=together`: all copies of a job are one block. False for `separate`: each copy
  /// is a block of its own.
  bool areCopiesTogether = false;
};

/// Reads the URI of a queue. Throws `std::invalid_argument`, with a text for people, if the URI
/// does not name a device on which a queue can print, or if it contains a user name or a password,
/// which printers do not take. The text never quotes a password.
DeviceUri parseDeviceUri(std::string_view uri);

/// Returns the URI of a queue for the device that `device` describes.
std::string uriOf(std::string_view device);

}  // namespace quordalvane::cups
