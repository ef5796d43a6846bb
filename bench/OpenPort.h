#pragma once

#include <memory>
#include <string>

#include "iphone-IOPort/ExternalAccessoryPort.h"

namespace quordalvane::bench {

/// A port that is open as long as this lives. Its time-out is ten seconds.
class OpenPort {
 public:
  /// Throws std::runtime_error when the port cannot be opened.
  OpenPort(const std::string& device, ZKEmulation emulation);
  ~OpenPort();
  OpenPort(const OpenPort&) = delete;
  OpenPort& operator=(const OpenPort&) = delete;

  /// One status; throws std::runtime_error if the printer gives none.
  void getStatus();

  ExternalAccessoryPort& operator*() { return *port_; }
  ExternalAccessoryPort* operator->() { return port_.get(); }
  const std::shared_ptr<ExternalAccessoryPort>& shared() const { return port_; }

 private:
  const std::shared_ptr<ExternalAccessoryPort> port_;
};

/// A port to `device`, on a platform of its own that knows no other; not open yet.
std::shared_ptr<ExternalAccessoryPort> makePort(const std::string& device, ZKEmulation emulation);

}  // namespace quordalvane::bench
