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
  std::optional<ByteLock> lock;  ///< a device that no other program can use needs no lock
};

/// Waits at most `limit` for the exclusive use of the printer. Throws the errors of `takeDevice`,
/// and std::invalid_argument if `device` is not a device text.
Turn takeTurn(const std::string& device, std::chrono::milliseconds limit);

/// An open port to one printer. It has its own platform, because several printers print at the same
/// time.
class PrinterLink {
 public:
  /// `device` is a device text. `model` is the name of a `Model`; an unknown name means a printer
  /// with ESC/POS commands. Throws std::invalid_argument if `device` is not a device text.
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
