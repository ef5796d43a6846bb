#pragma once

#include <chrono>
#include <memory>
#include <optional>
#include <string>

#include "iphone-IOPort/ExternalAccessoryPort.h"
#include "locks/ByteLock.h"

namespace quordalvane::printer_app {

/// A turn on a printer, see `takeDevice`.
struct Turn {
  bool isTaken = false;
  std::optional<ByteLock> lock;  ///< empty for a device that nobody else can have
};

/// Takes the printer of this text for a job or a question. Throws what `takeDevice` throws.
Turn takeTurn(const std::string& device, std::chrono::milliseconds limit);

/// An open port to one printer, on a platform of its own: printers are printed on at the same time.
class PrinterLink {
 public:
  /// `device` is the text of the device, `model` the name of its kind. Throws std::invalid_argument
  /// for a text that is no device.
  PrinterLink(const std::string& device, const std::string& model);
  ~PrinterLink();
  PrinterLink(const PrinterLink&) = delete;
  PrinterLink& operator=(const PrinterLink&) = delete;

  bool isOpen() const { return isOpen_; }
  std::string error() const;  ///< why it is not open
  const std::shared_ptr<ExternalAccessoryPort>& port() { return port_; }

 private:
  std::shared_ptr<EAAccessory> accessory_;
  std::shared_ptr<ExternalAccessoryPort> port_;
  bool isOpen_ = false;
};

}  // namespace quordalvane::printer_app
