#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace quordalvane {

/// The way in which a device is attached.
enum class Via { Usb, Bluetooth, Network, Serial };

/// Returns "usb", "bluetooth", "network" or "serial".
std::string_view nameOf(Via via);

/// A device that could be a printer. The device itself supplies the texts, so they may be wrong.
/// Each text is short and is valid UTF-8 without control characters.
struct FoundDevice {
  std::string device;        ///< the device text, as `parseDeviceSpec` takes it
  std::string name;          ///< the name, or a description if there is no name; never empty
  std::string serialNumber;  ///< the serial number; "" if the device has none
  std::string maker;         ///< the maker; "" if it is not known
  std::string model;         ///< the model; "" if it is not known
  Via via;

  /// Whether the device is reachable; null if only an attempt to open a session can show this.
  std::optional<bool> reachable;
};

/// Returns a copy of `text` that is fit for a `FoundDevice`: control characters are escaped, and
/// the copy has at most about 100 bytes.
std::string shownText(std::string_view text);

}  // namespace quordalvane
