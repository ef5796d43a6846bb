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

/// Describes how one device is reached, and which texts its accessory has.
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

  /// The texts of the accessory, taken from the keys. If a key is missing, its text has a default
  /// value; the default name is `place`, or a name of the scheme if `place` is empty. The member
  /// `connectionID` is not set.
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
