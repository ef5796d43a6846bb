#include "backends/posix/Connect.h"

#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>
#include <sys/un.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <stdexcept>
#include <system_error>

namespace quordalvane::posix {
namespace {

using namespace std::chrono_literals;

// If nothing arrives on an idle connection for this interval, the system sends a probe to the other
// side. It repeats the probe after each further interval, up to `keepAliveCount` times.
constexpr std::chrono::seconds keepAliveInterval{15};
constexpr int keepAliveCount = 7;

template <typename Value>
void setOption(const Descriptor& socket, int level, int name, const Value& value) {
  if (::setsockopt(socket.number(), level, name, &value, sizeof value) != 0) {
    throw std::system_error(errno, std::generic_category());
  }
}

void boundConnect(const Descriptor& socket, SteadyTime deadline) {
  using namespace std::chrono;
  // The time left is at least one microsecond, because a time-out of zero would mean no limit.
  const auto left = std::max(ceil<microseconds>(deadline - SteadyClock::now()), 1us);
  const auto whole = floor<seconds>(left);
  const timeval timeout{.tv_sec = whole.count(), .tv_usec = microseconds(left - whole).count()};
  setOption(socket, SOL_SOCKET, SO_SNDTIMEO, timeout);
}

// Returns a connected socket. Throws an exception with the reason if there is no connection by
// `deadline`.
Descriptor connectUntil(SteadyTime deadline, const SocketAddress& address) {
  const int number = ::socket(address.storage.ss_family, SOCK_STREAM | SOCK_CLOEXEC, 0);
  if (number == -1) {
    throw std::system_error(errno, std::generic_category());
  }
  Descriptor socket(number, Descriptor::Kind::Socket);
  do {
    boundConnect(socket, deadline);
    // If a signal interrupts `connect`, the attempt continues in the system, and the next call
    // waits for the end of the attempt.
    if (::connect(number, reinterpret_cast<const sockaddr*>(&address.storage), address.length) ==
        0) {
      return socket;
    }
  } while (errno == EINTR && !hasPassed(deadline));
  constexpr std::array unfinished = {EINPROGRESS, EALREADY, EAGAIN, EINTR};
  const bool timedOut = std::count(unfinished.begin(), unfinished.end(), errno) > 0;
  throw std::system_error(timedOut ? ETIMEDOUT : errno, std::generic_category());
}

void makeFitForExchanges(const Descriptor& socket) {
  constexpr int on = true;
  setOption(socket, IPPROTO_TCP, TCP_NODELAY, on);
  setOption(socket, SOL_SOCKET, SO_KEEPALIVE, on);
  setOption(socket, IPPROTO_TCP, TCP_KEEPIDLE, static_cast<int>(keepAliveInterval.count()));
  setOption(socket, IPPROTO_TCP, TCP_KEEPINTVL, static_cast<int>(keepAliveInterval.count()));
  setOption(socket, IPPROTO_TCP, TCP_KEEPCNT, keepAliveCount);
}

SocketAddress unixAddress(const std::string& path) {
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  if (path.size() >= sizeof address.sun_path) {
    throw std::system_error(ENAMETOOLONG, std::generic_category());
  }
  path.copy(address.sun_path, path.size());
  SocketAddress result{.storage = {}, .length = sizeof address};
  std::memcpy(&result.storage, &address, sizeof address);
  return result;
}

// Runs `connect`. If it throws, adds the place to the beginning of the message and keeps the error
// code.
template <typename Connect>
Descriptor connectNamed(const std::string& place, Connect connect) {
  try {
    return connect();
  } catch (const std::system_error& error) {
    throw std::system_error(error.code(), place);
  } catch (const std::exception& error) {
    throw std::runtime_error(place + ": " + error.what());
  }
}

}  // namespace

Descriptor connectToAny(const std::vector<SocketAddress>& addresses, SteadyTime deadline) {
  for (std::size_t i = 0;; ++i) {
    const auto remaining = static_cast<SteadyClock::rep>(addresses.size() - i);
    const auto now = SteadyClock::now();
    try {
      return connectUntil(now + (deadline - now) / remaining, addresses[i]);
    } catch (const std::system_error&) {
      if (remaining == 1) {
        throw;
      }
    }
  }
}

Descriptor connectTcp(const std::string& host, std::uint16_t port,
                      std::chrono::milliseconds timeout) {
  const SteadyTime deadline = SteadyClock::now() + timeout;
  return connectNamed(host + " port " + std::to_string(port), [&] {
    Descriptor socket = connectToAny(resolve(host, port, deadline), deadline);
    makeFitForExchanges(socket);
    return socket;
  });
}

Descriptor connectUnix(const std::string& path, std::chrono::milliseconds timeout) {
  const SteadyTime deadline = SteadyClock::now() + timeout;
  return connectNamed(path, [&] { return connectUntil(deadline, unixAddress(path)); });
}

}  // namespace quordalvane::posix
