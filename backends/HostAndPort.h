#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include <quordalvane/QuorExport.h>

namespace quordalvane {

/// A place on the network.
struct HostAndPort {
  std::string host;    ///< a name or an address, without brackets
  std::uint16_t port;  ///< 1 to 65535
};

/// Reads `HOST:PORT`; an IPv6 address is written in brackets, `[::1]:9100`. Throws
/// `std::invalid_argument` for any other text, with a message for people that is printable
/// whatever was read. May be called from any thread.
QUOR_EXPORT HostAndPort parseHostAndPort(std::string_view text);

}  // namespace quordalvane
