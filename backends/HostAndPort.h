#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include <quordalvane/QuorExport.h>

namespace quordalvane {

/// A host on the network and one of its ports.
struct HostAndPort {
  std::string host;    ///< a name or an address, without brackets
  std::uint16_t port;  ///< 1 to 65535
};

/// Parses `HOST:PORT`; an IPv6 address is written in brackets, `[::1]:9100`. Throws
/// `std::invalid_argument` for any other text. The message is for people and always printable. Any
/// thread may call this function.
QUOR_EXPORT HostAndPort parseHostAndPort(std::string_view text);

}  // namespace quordalvane
