#pragma once

#include <sys/socket.h>

#include <cstdint>
#include <functional>
#include <string>
#include <system_error>
#include <vector>

#include "backends/posix/Deadline.h"

namespace quordalvane::posix {

struct SocketAddress {
  sockaddr_storage storage;
  socklen_t length;
};

/// Returns the category of the error codes of the system's resolver.
const std::error_category& resolverCategory();

/// The result of a lookup: the addresses, or the resolver's error code; 0 means success.
struct LookupResult {
  std::vector<SocketAddress> addresses;
  int error = 0;
};

/// A function that looks up addresses. It may block for any time.
using Lookup = std::function<LookupResult()>;

/// Runs `lookup` on a thread of its own and returns the addresses that `lookup` finds. Throws
/// `std::system_error` with the code of the resolver if the lookup fails, and with EAI_AGAIN if the
/// lookup has not ended by `deadline`. In that case the lookup continues on its thread, which keeps
/// a copy of the function.
std::vector<SocketAddress> lookUpUntil(SteadyTime deadline, Lookup lookup);

/// Returns the addresses of `host`, at least one, in the order in which to try them. A numeric
/// address is parsed and never looked up. Throws `std::system_error` with a code of
/// `resolverCategory()` if there is no address by `deadline`.
std::vector<SocketAddress> resolve(const std::string& host, std::uint16_t port,
                                   SteadyTime deadline);

}  // namespace quordalvane::posix
