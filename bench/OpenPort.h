#pragma once

#include <memory>
#include <string>

#include "iphone-IOPort/ExternalAccessoryPort.h"

namespace quordalvane::bench {

/// A port that is open during the lifetime of this object. Its time-out is ten seconds.
class OpenPort {
 public:
  /// Opens the port. Throws std::runtime_error if it cannot be opened.
  OpenPort(const std::string& device, ZKEmulation emulation);
  ~OpenPort();
  OpenPort(const OpenPort&) = delete;
  OpenPort& operator=(const OpenPort&) = delete;

  /// Queries one status. Throws std::runtime_error if the printer does not answer.
  void getStatus();

  ExternalAccessoryPort& operator*() { return *port_; }
  ExternalAccessoryPort* operator->() { return port_.get(); }
  const std::shared_ptr<ExternalAccessoryPort>& shared() const { return port_; }

 private:
  const std::shared_ptr<ExternalAccessoryPort> port_;
};

/// Creates a port to `device`, which is the only device of the port's platform. The port is not
/// open yet.
std::shared_ptr<ExternalAccessoryPort> makePort(const std::string& device, ZKEmulation emulation);

}  // namespace quordalvane::bench
