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

/// The codes of the system's resolver, with its texts.
const std::error_category& resolverCategory();

/// The result of a lookup: addresses, or the resolver's error code.
struct LookupResult {
  std::vector<SocketAddress> addresses;
  int error = 0;
};

/// A search for addresses, which may block for any time.
using Lookup = std::function<LookupResult()>;

/// Returns the addresses that `lookup` finds; throws `std::system_error` with the code of a failed
/// one, and with EAI_AGAIN if it has not ended at `deadline`: it then continues on a thread of its
/// own, which keeps a copy.
std::vector<SocketAddress> lookUpUntil(SteadyTime deadline, Lookup lookup);

/// The addresses of `host`, at least one, in the order in which to try them. An address in figures
/// is read as such and never looked up. Throws `std::system_error` with a code of
/// `resolverCategory()` if there is none by `deadline`.
std::vector<SocketAddress> resolve(const std::string& host, std::uint16_t port,
                                   SteadyTime deadline);

}  // namespace quordalvane::posix
