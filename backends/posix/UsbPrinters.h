#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

namespace quordalvane::posix {

/// One printer at the system's USB printer driver, and its own texts about itself.
struct UsbPrinter {
  std::filesystem::path node;  ///< "/dev/usb/lp0"; the number changes with each plugging
  std::string vendor;          ///< four hex digits
  std::string product;         ///< four hex digits
  std::string serial;          ///< "" if it reports none
  std::string maker;           ///< "" if it reports none
  std::string model;           ///< "" if it reports none

  /// Whether `other` is the same device as far as its texts show. Only their nodes distinguish two
  /// printers of one model without serial numbers.
  bool isSameDevice(const UsbPrinter& other) const;

  /// The device text that chooses this printer: by its serial number, if it has one that cannot be
  /// taken for a path.
  std::string text() const;
};

/// Why no USB printer can be chosen.
enum class UsbError {
  NotPluggedIn = 1,
  Ambiguous,
  NoDriver,           ///< it is plugged in, and the system's driver is not loaded
  HeldByPrintSystem,  ///< a program has taken it from the driver, as the print system does
  TakenFromDriver,    ///< a program has done so and has not given it back
  DroppedByHub,       ///< a hub has switched its power off
};

/// The category of those codes. `HeldByPrintSystem` is `std::errc::device_or_resource_busy`.
const std::error_category& usbCategory();

/// The folders in which the system lists USB printers; a test has its own.
struct UsbRoots {
  std::filesystem::path sys = "/sys";
  std::filesystem::path dev = "/dev";
};

/// The printers that are plugged in, by the numbers of their nodes. Opens none of them.
std::vector<UsbPrinter> usbPrinters(const UsbRoots& roots = {});

/// The one printer that `place` chooses: "" the only one, a path its node, `VID:PID` the only one
/// of that model, and any other text its serial number. Throws `std::system_error` with a code of
/// `usbCategory()`, and a text for people that lists the printers, if there is not exactly one.
UsbPrinter findUsbPrinter(std::string_view place, const UsbRoots& roots = {});

}  // namespace quordalvane::posix
