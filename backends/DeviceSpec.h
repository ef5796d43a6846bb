#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <quordalvane/QuorExport.h>

#include "backends/AccessoryIdentity.h"

namespace quordalvane {

/// Describes one device: how it is reached, and the data that its accessory gives about itself,
/// such as the name and the serial number.
///
/// A `DeviceSpec` is written as a device text, `SCHEME:PLACE[,key=value...]`, for example
/// `tcp:192.0.2.10:9100`, `usb:` or `virtual:,coverOpen=true`. The section DEVICES of the manual
/// page `quorport(1)` lists the schemes. For each scheme it lists the form of PLACE and the keys
/// that only this scheme takes. `quorport --help` gives a short list. `addScheme` adds further
/// schemes.
///
/// The scheme may be left out in two cases. `HOST` means `tcp:HOST:9100`. A path below `/dev` whose
/// name shows the kind of device means a device of that kind: `/dev/ttyUSB0` means
/// `serial:/dev/ttyUSB0`, and `/dev/usb/lp0` means `usb:/dev/usb/lp0`.
///
/// Every scheme takes the keys `name`, `serial`, `model`, `manufacturer`, `protocol`, `address`,
/// `id` and `proof`. Only `protocol` and the virtual printer's own keys may be given more than
/// once. An empty value is allowed. `address` takes six pairs of hex digits joined by colons;
/// `proof` takes the name of a proof, as `nameOf` returns it.
///
/// A backslash removes the special meaning of the next character: in a place or a value, `\,` is a
/// comma and `\\` a backslash.
struct DeviceSpec {
  std::string scheme;  ///< for example "tcp"
  std::string place;   ///< the text after the scheme

  /// The data that the accessory gives about itself, taken from the keys. If a key is missing,
  /// the default of `AccessoryIdentity` applies. But if `name` is missing, the name is `place` or,
  /// if `place` is empty, the `nameWithoutPlace` of the scheme. The member `connectionID` is not
  /// set.
  AccessoryIdentity identity;

  std::optional<std::uint64_t> id;  ///< the connection identifier, if the key `id` was given

  /// The keys that only this scheme takes, and their values, in the order of the device text.
  std::vector<std::pair<std::string, std::string>> options;
};

/// Parses a device text. Throws `std::invalid_argument` if `text` is not a valid device text. The
/// message is for people; it names the mistake and the right form, and is always printable. Any
/// thread may call this function.
QUOR_EXPORT DeviceSpec parseDeviceSpec(std::string_view text);

}  // namespace quordalvane
