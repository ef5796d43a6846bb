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

/// How to reach one device, and the texts of its accessory.
///
/// Its text is `SCHEME:PLACE[,key=value...]`:
///
/// | text | device |
/// |---|---|
/// | `virtual:`, `virtual:NAME` or `virtual:KEY=VALUE` | the virtual printer |
/// | `tcp:HOST:PORT` | a printer on the network; an IPv6 address in brackets, `tcp:[::1]:9100` |
/// | `unix:PATH` | a local socket |
/// | `serial:PATH` | a serial line |
/// | `usb:`, `usb:SERIAL`, `usb:VID:PID` or `usb:/dev/usb/lpN` | a printer at the USB driver |
/// | `bluetooth:`, `bluetooth:ADDRESS` or `bluetooth:NAME` | a paired printer, with its library |
///
/// `HOST` alone is `tcp:HOST:9100`, and a path below `/dev` whose kind its name shows is a device
/// of that kind: `/dev/ttyUSB0` is `serial:/dev/ttyUSB0`, `/dev/usb/lp0` is `usb:/dev/usb/lp0`.
///
/// Every scheme takes `name`, `serial`, `model`, `manufacturer`, `protocol`, `address`, `id` and
/// `proof`.
/// `serial:` also takes `baud`, `bits`, `parity`, `stop` and `flow`; `virtual:` takes the printer's
/// own keys. Only `protocol` and the printer's own keys may be given more than once. A value may be
/// empty, and is then the empty text. `address` takes six pairs of hex digits joined by colons,
/// `proof` the name of a proof, as `nameOf` gives it.
///
/// A backslash takes the character after it as it is: `\,` is a comma inside a place or a value,
/// `\\` a backslash.
struct DeviceSpec {
  std::string scheme;  ///< "tcp", for example
  std::string place;   ///< the text after the scheme

  /// The texts that were given, and the usual ones otherwise; the name is the place unless given.
  /// Its connection identifier is not set.
  AccessoryIdentity identity;

  std::optional<std::uint64_t> id;  ///< the connection identifier, if it was given

  /// The keys that this scheme alone takes, as given and in order.
  std::vector<std::pair<std::string, std::string>> options;
};

/// Reads the text of a device. Throws `std::invalid_argument` for any other text, with a message
/// for people that names the mistake and what is right; it is printable whatever was read. May be
/// called from any thread.
QUOR_EXPORT DeviceSpec parseDeviceSpec(std::string_view text);

}  // namespace quordalvane
