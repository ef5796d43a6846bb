#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>

#include "backends/posix/PosixPlatform.h"
#include "iphone-IOPort/ExternalAccessoryPort.h"
#include "locks/ByteLock.h"
#include "tools/cups-backend/DeviceUri.h"

namespace quordalvane::cups {

/// Thrown if the printer cannot be reached now; the text says why.
class OutOfReach : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// The printer of a queue. Several queues and programs may share the printer: while this object has
/// it open, no other job of this machine can use it.
class QueuePrinter {
 public:
  /// Opens nothing. `open` calls `onWait` if it must wait because another job has the printer.
  QueuePrinter(const DeviceUri& uri, std::function<void()> onWait);
  ~QueuePrinter() { close(); }
  QueuePrinter(const QueuePrinter&) = delete;
  QueuePrinter& operator=(const QueuePrinter&) = delete;

  /// Does nothing if a port is open. Otherwise waits until no other job has the printer, and opens
  /// a port. Throws `OutOfReach` if the printer cannot be reached, and `std::invalid_argument` if
  /// the keys of the device text prevent the port from choosing the device.
  void open();

  /// Closes the port and releases the printer for others. Does nothing if the printer is not open.
  void close();

  bool isOpen() const { return port_ != nullptr; }
  const std::shared_ptr<ExternalAccessoryPort>& port() const { return port_; }

  /// Returns the identity of the device, as an IEEE 1284 device ID.
  std::string deviceId() const;

 private:
  void takeTurn();

  const DeviceUri uri_;
  const std::function<void()> onWait_;
  const std::shared_ptr<posix::PosixPlatform> platform_;
  const std::shared_ptr<EAAccessory> accessory_;
  std::optional<ByteLock> turn_;
  std::shared_ptr<ExternalAccessoryPort> port_;
};

}  // namespace quordalvane::cups
