#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace quordalvane {

/// The way to a device.
enum class Via { Usb, Bluetooth, Network, Serial };

/// "usb", "bluetooth", "network" or "serial".
std::string_view nameOf(Via via);

/// A device that could be a printer. The device itself gives its texts, so they may be wrong; but
/// they are short, valid UTF-8 and without control characters.
struct FoundDevice {
  std::string device;        ///< the text that `parseDeviceSpec` takes
  std::string name;          ///< the name that it has, or a description; never empty
  std::string serialNumber;  ///< "" if it has none
  std::string maker;         ///< "" if it is not known
  std::string model;         ///< "" if it is not known
  Via via;
  std::optional<bool> reachable;  ///< null if only a session can show it
};

/// A text from outside as a `FoundDevice` holds it: printable, and cut after some 100 bytes.
std::string shownText(std::string_view text);

/// `place` after `scheme` as `parseDeviceSpec` takes it: commas and backslashes are escaped.
std::string deviceText(std::string_view scheme, std::string_view place);

}  // namespace quordalvane
