#pragma once

#include <cstdint>
#include <memory>
#include <string>

namespace quordalvane::bench {

enum class Medium { Tcp, Local, Terminal };

/// A place at which a printer can be reached: a listening socket of this machine, or a
/// pseudo-terminal. Failures throw std::system_error.
class Endpoint {
 public:
  virtual ~Endpoint() = default;

  /// The place as a text for `parseDeviceSpec`.
  virtual std::string device() const = 0;

  /// A descriptor that is connected to the place by bare system calls; the caller's.
  virtual int connect() = 0;

  /// The printer's end of a connection that was made; the caller's. Waits for one.
  virtual int accept() = 0;
};

std::unique_ptr<Endpoint> makeEndpoint(Medium medium);

/// The port that an endpoint over TCP listens on at 127.0.0.1.
std::uint16_t tcpPort(const Endpoint& endpoint);

}  // namespace quordalvane::bench
