#pragma once

#include <chrono>
#include <cstdint>
#include <string>
#include <vector>

#include "backends/posix/Descriptor.h"
#include "backends/posix/Resolve.h"

namespace quordalvane::posix {

/// How long connecting may take in all, resolving a name and trying all its addresses included.
inline constexpr std::chrono::milliseconds connectTimeout{5000};

/// Connects to the first of `addresses` that answers. Each gets an equal share of the time that is
/// left until `deadline`, so that a silent one leaves some to the next. There must be at least one.
/// Throws the error of the last one.
Descriptor connectToAny(const std::vector<SocketAddress>& addresses, SteadyTime deadline);

/// Connects to `host`, a name or an address (IPv6 without brackets), and makes the link fit for
/// short exchanges: nothing is held back to be sent together with more, and an idle connection
/// whose other side has vanished without a sign fails after two minutes. A printer that stops the
/// flow, out of paper for example, may do so for as long as it likes.
///
/// Throws a `std::system_error` with a text for people if nothing answers within `timeout`, which
/// is above zero; its code is one of the system's or, for a name, of `resolverCategory()`. A lookup
/// that the resolver has not finished by then is left to end on its own.
Descriptor connectTcp(const std::string& host, std::uint16_t port,
                      std::chrono::milliseconds timeout = connectTimeout);

/// Connects to the socket at `path`. Throws as above; also if the path is too long for a socket.
Descriptor connectUnix(const std::string& path, std::chrono::milliseconds timeout = connectTimeout);

}  // namespace quordalvane::posix
