#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "tools/quorport/simulate/Listener.h"

namespace quordalvane::tool {

/// The longest path that a Unix socket can have, in bytes.
inline constexpr std::size_t longestSocketPath = 107;

struct ListenAddress {
  std::string host;
  std::uint16_t port;  ///< 0 means any free port
};

/// Reads HOST:PORT, PORT or an empty text. Without a host, only this machine can connect; without a
/// port, any free port is used. Returns empty if the text has another form.
std::optional<ListenAddress> parseListenAddress(std::string_view text);

/// Listens at the address. Throws a std::exception if the system refuses.
std::unique_ptr<Listener> listenOnTcp(const ListenAddress& address);

enum class SocketAccess { AsUsual, OwnerAlone };

/// Creates a socket at `path`, which the listener removes when it is destroyed. Replaces a socket
/// at which nobody listens any more; never touches another kind of file. Throws a std::exception if
/// the system refuses or the path is in use.
std::unique_ptr<Listener> listenOnUnix(const std::string& path, SocketAccess access);

}  // namespace quordalvane::tool
