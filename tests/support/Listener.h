#pragma once

#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <sys/un.h>

#include <cstdint>
#include <string>

#include "backends/posix/Descriptor.h"

namespace quordalvane::test {

/// A socket that listens, but accepts no connection by itself.
class Listener {
 public:
  /// Listens on the loopback interface, at any free port.
  static Listener onLoopback(int backlog) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    return {address, address.sin_family, backlog};
  }

  static Listener at(const std::string& path, int backlog) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    path.copy(address.sun_path, sizeof address.sun_path - 1);
    return {address, address.sun_family, backlog};
  }

  int number() const { return socket_.number(); }

  std::uint16_t port() const {
    sockaddr_in address{};
    socklen_t length = sizeof address;
    EXPECT_EQ(::getsockname(number(), reinterpret_cast<sockaddr*>(&address), &length), 0);
    return ntohs(address.sin_port);
  }

  /// Accepts the next connection, and returns its descriptor, which the caller closes.
  int accept() const {
    const int accepted = ::accept4(number(), nullptr, nullptr, SOCK_CLOEXEC);
    EXPECT_GE(accepted, 0);
    return accepted;
  }

 private:
  template <typename Address>
  Listener(const Address& address, int family, int backlog)
      : socket_(::socket(family, SOCK_STREAM | SOCK_CLOEXEC, 0), posix::Descriptor::Kind::Socket) {
    const auto* const generic = reinterpret_cast<const sockaddr*>(&address);
    EXPECT_EQ(::bind(number(), generic, sizeof address), 0);
    EXPECT_EQ(::listen(number(), backlog), 0);
  }

  posix::Descriptor socket_;
};

}  // namespace quordalvane::test
