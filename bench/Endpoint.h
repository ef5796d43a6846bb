#pragma once

#include <cstdint>
#include <memory>
#include <string>

namespace quordalvane::bench {

enum class Medium { Tcp, Local, Terminal };

/// An address at which a printer can be reached: a listening socket of this machine, or a
/// pseudo-terminal. A failure of the system throws std::system_error.
class Endpoint {
 public:
  virtual ~Endpoint() = default;

  /// Returns the address as a text for `parseDeviceSpec`.
  virtual std::string device() const = 0;

  /// Connects to the address by direct system calls. Returns the descriptor, which the caller
  /// closes.
  virtual int connect() = 0;

  /// Waits for a connection and accepts it. Returns the printer's descriptor, which the caller
  /// closes.
  virtual int accept() = 0;
};

std::unique_ptr<Endpoint> makeEndpoint(Medium medium);

/// Returns the port of an endpoint over TCP, which listens at 127.0.0.1.
std::uint16_t tcpPort(const Endpoint& endpoint);

}  // namespace quordalvane::bench
