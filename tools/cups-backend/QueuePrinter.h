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

/// The printer cannot be reached now; the text says why.
class OutOfReach : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// The printer of a queue, which many queues and programs may share: while it is open, no other job
/// of this machine has it.
class QueuePrinter {
 public:
  /// Nothing is opened. `onWait` is called when another job has the printer.
  QueuePrinter(const DeviceUri& uri, std::function<void()> onWait);
  ~QueuePrinter() { close(); }
  QueuePrinter(const QueuePrinter&) = delete;
  QueuePrinter& operator=(const QueuePrinter&) = delete;

  /// Waits until no other job has the printer, and opens a port unless one is open. Throws
  /// `OutOfReach`; `std::invalid_argument` if the keys of the device make every port pass it over.
  void open();

  /// Closes the port and gives the printer to others. Harmless if it is not open.
  void close();

  bool isOpen() const { return port_ != nullptr; }
  const std::shared_ptr<ExternalAccessoryPort>& port() const { return port_; }

  /// The device's own identity, as the print system writes it.
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
