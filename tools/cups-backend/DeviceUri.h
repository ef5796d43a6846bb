#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "iphone-IOPort/enum.h"

namespace quordalvane::cups {

/// The content of a queue's URI: its printer, and how jobs are printed on it.
///
/// | URI | device |
/// |---|---|
/// | `quor:/tcp/192.0.2.10:9100?name=Kitchen` | `tcp:192.0.2.10:9100,name=Kitchen` |
/// | `quor:/serial/dev/ttyUSB0?baud=9600` | `serial:/dev/ttyUSB0,baud=9600` |
/// | `quor:/usb/SERIAL`, `quor:/usb` | `usb:SERIAL`, `usb:` |
/// | `quor:` and the text of a device | that device |
///
/// `%41` is the character of that code. A comma, a slash or a question mark that is written so
/// separates nothing. Besides the keys of the device the query takes `emulation`, `timeout`,
/// `end-timeout` and `copies`, which are the members below.
struct DeviceUri {
  std::string device;  ///< as `parseDeviceSpec` takes it

  ZKEmulation emulation = ZKEmulationQuorLine;  ///< `line` or `escpos`
  std::uint32_t timeout = 10000;                ///< milliseconds, of input and output
  std::optional<std::uint32_t> endTimeout;      ///< milliseconds, of the confirmation

  /// `together`: all copies of a job are one block; `separate`: each is a block of its own.
  bool areCopiesTogether = false;
};

/// Reads the URI of a queue. Throws `std::invalid_argument` with a text for people if it names no
/// device that a queue can print on. That text contains no password: the printers take none, so a
/// URI with one is refused and not repeated.
DeviceUri parseDeviceUri(std::string_view uri);

/// The URI of a queue for `device`, the text of a device.
std::string uriOf(std::string_view device);

}  // namespace quordalvane::cups
