#pragma once

#include <chrono>
#include <memory>
#include <optional>
#include <string>

#include "iphone-IOPort/ExternalAccessoryPort.h"
#include "locks/ByteLock.h"

namespace quordalvane::printer_app {

/// The exclusive use of a printer; see `takeDevice`.
struct Turn {
  bool isTaken = false;
  std::optional<ByteLock> lock;  ///< no lock is needed if no other program can use the device
};

/// Waits at most `limit` for the exclusive use of the printer. Throws the errors of `takeDevice`.
Turn takeTurn(const std::string& device, std::chrono::milliseconds limit);

/// An open port to one printer. It has its own platform, because several printers print at the same
/// time.
class PrinterLink {
 public:
  /// `device` is the text of the device, `model` the name of its kind. Throws std::invalid_argument
  /// if `device` is not a device text.
  PrinterLink(const std::string& device, const std::string& model);
  ~PrinterLink();
  PrinterLink(const PrinterLink&) = delete;
  PrinterLink& operator=(const PrinterLink&) = delete;

  bool isOpen() const { return isOpen_; }
  std::string error() const;  ///< why the port is not open; "" if it is open
  const std::shared_ptr<ExternalAccessoryPort>& port() { return port_; }

 private:
  std::shared_ptr<EAAccessory> accessory_;
  std::shared_ptr<ExternalAccessoryPort> port_;
  bool isOpen_ = false;
};

}  // namespace quordalvane::printer_app
