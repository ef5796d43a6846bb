#pragma once

#include <chrono>
#include <cstdint>
#include <string>
#include <vector>

#include "backends/posix/Descriptor.h"
#include "backends/posix/Resolve.h"

namespace quordalvane::posix {

/// How long connecting may take in total, including the time to resolve a name and to try all its
/// addresses.
inline constexpr std::chrono::milliseconds connectTimeout{5000};

/// Connects to the first of `addresses` that answers. There must be at least one address. The time
/// left until `deadline` is divided equally among the addresses, so that a silent address leaves
/// time for the next. If all addresses fail, throws the error of the last address.
Descriptor connectToAny(const std::vector<SocketAddress>& addresses, SteadyTime deadline);

/// Connects to `host`, which is a name or an address (IPv6 without brackets). The connection sends
/// small amounts of data without delay. If the other side vanishes without closing the connection,
/// an idle connection fails after two minutes. A connection does not fail because a printer stops
/// the flow of data, for example while it is out of paper, however long this lasts.
///
/// Throws a `std::system_error`, with a message for people, if nothing answers within `timeout`,
/// which must be above zero. If `host` is a name that cannot be resolved, the code of the error
/// belongs to `resolverCategory()`; otherwise it is an error code of the system. If the lookup of
/// the name takes longer than `timeout`, the lookup continues on a thread of its own.
Descriptor connectTcp(const std::string& host, std::uint16_t port,
                      std::chrono::milliseconds timeout = connectTimeout);

/// Connects to the local socket at `path`. Throws a `std::system_error` if nothing answers within
/// `timeout`, or if the path is too long for a socket.
Descriptor connectUnix(const std::string& path, std::chrono::milliseconds timeout = connectTimeout);

}  // namespace quordalvane::posix
