#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <quordalvane/QuorExport.h>

#include "backends/AccessoryIdentity.h"
#include "backends/posix/Serial.h"

namespace quordalvane {

/// How to reach one device, and what it presents itself as.
///
/// Its text is `SCHEME:PLACE[,key=value...]`:
///
/// | text | device |
/// |---|---|
/// | `virtual:`, `virtual:NAME` or `virtual:KEY=VALUE` | the printer that is built in |
/// | `tcp:HOST:PORT` | a printer on the network; an IPv6 address in brackets, `tcp:[::1]:9100` |
/// | `unix:PATH` | a local socket |
/// | `serial:PATH` | a serial line |
///
/// Every scheme takes `name`, `serial`, `model`, `manufacturer`, `protocol`, `address` and `id`.
/// `serial:` also takes `baud`, and `virtual:` takes the printer's own keys. Only `protocol` and
/// the printer's own keys may be given more than once. A value may be empty, and is then the empty
/// text. `address` takes six pairs of hex digits joined by colons.
///
/// A backslash stands for the character after it, whatever that is: `\,` is a comma inside a place
/// or a value, `\\` a backslash.
struct DeviceSpec {
  std::string scheme;  ///< "virtual", "tcp", "unix" or "serial"
  std::string place;   ///< what follows the scheme; empty on `virtual:` alone

  /// The texts that were given, and the usual ones otherwise; the name is the place unless given.
  /// Its connection identifier is not set.
  AccessoryIdentity identity;

  std::optional<std::uint64_t> id;         ///< the connection identifier, if it was given
  unsigned baud = posix::defaultBaudRate;  ///< bits a second; for `serial:` alone

  /// The keys that only the scheme's own back end understands, as given and in order.
  std::vector<std::pair<std::string, std::string>> options;
};

/// Reads the text of a device. Raises `std::invalid_argument` if it is none, with a text for people
/// that names what is wrong and what may stand there; the text is printable whatever was read.
QUOR_EXPORT DeviceSpec parseDeviceSpec(std::string_view text);

/// A place on the network.
struct HostAndPort {
  std::string host;    ///< a name or an address, without brackets
  std::uint16_t port;  ///< 1 to 65535
};

/// Reads `HOST:PORT`. Raises as above.
QUOR_EXPORT HostAndPort parseHostAndPort(std::string_view text);

}  // namespace quordalvane
