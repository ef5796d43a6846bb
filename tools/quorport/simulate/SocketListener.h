#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "tools/quorport/simulate/Listener.h"

namespace quordalvane::tool {

/// The longest path that the address of a socket holds.
inline constexpr std::size_t longestSocketPath = 107;

struct ListenAddress {
  std::string host;
  std::uint16_t port;  ///< 0: any that is free
};

/// Reads HOST:PORT, PORT or nothing; without a host it is this machine alone, without a port any
/// that is free. Empty if the text has none of these forms.
std::optional<ListenAddress> parseListenAddress(std::string_view text);

/// Throws a std::exception if the system refuses.
std::unique_ptr<Listener> listenOnTcp(const ListenAddress& address);

enum class SocketAccess { AsUsual, OwnerAlone };

/// Makes the socket at `path`, in the place of one that nobody listens to any more, and removes it
/// at its end. A file of another kind at that path is not touched. Throws a std::exception if the
/// system refuses or there is something.
std::unique_ptr<Listener> listenOnUnix(const std::string& path, SocketAccess access);

}  // namespace quordalvane::tool
