#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

namespace quordalvane::posix {

/// One printer at the system's USB printer driver, with the texts that the printer reports.
struct UsbPrinter {
  std::filesystem::path node;  ///< for example "/dev/usb/lp0"; may change when replugged
  std::string vendor;          ///< four hex digits
  std::string product;         ///< four hex digits
  std::string serial;          ///< "" if the printer reports none
  std::string maker;           ///< "" if the printer reports none
  std::string model;           ///< "" if the printer reports none

  /// Returns whether `other` is the same device: whether the vendor, product, serial number, maker
  /// and model are equal. If there is no serial number, the nodes must also be equal, because only
  /// the nodes distinguish two printers of one model.
  bool isSameDevice(const UsbPrinter& other) const;

  /// Returns "Maker Model". A missing part is left out; if both parts are missing, returns "".
  std::string makerAndModel() const;
};

/// Returns the device text that selects `printer` among `printers`. The device text contains the
/// serial number. If there is no serial number, or if the serial number looks like a path or
/// selects another printer, the device text contains the node.
std::string textOf(const UsbPrinter& printer, const std::vector<UsbPrinter>& printers);

/// The reason why no USB printer can be chosen.
enum class UsbError {
  NotPluggedIn = 1,
  Ambiguous,
  NoDriver,  ///< the printer is plugged in, but the system's driver is not loaded

  /// Another program, for example the print system, uses the printer now, without the driver.
  HeldByPrintSystem,

  /// No program uses the printer now, but a program took it from the driver and did not give it
  /// back.
  TakenFromDriver,
  DroppedByHub,  ///< a USB hub has switched off the printer's power
};

/// Returns the error category of these codes. `HeldByPrintSystem` is equivalent to
/// `std::errc::device_or_resource_busy`.
const std::error_category& usbCategory();

/// The folders in which the system lists USB printers. Tests use their own folders.
struct UsbRoots {
  std::filesystem::path sys = "/sys";
  std::filesystem::path dev = "/dev";
};

/// Returns the printers that are plugged in, ordered by the numbers of their nodes. Opens no
/// printer.
std::vector<UsbPrinter> usbPrinters(const UsbRoots& roots = {});

/// Returns the one printer that `place` selects: "" selects the only printer; a path selects the
/// printer with this node; `VID:PID` selects the only printer of this model; any other text selects
/// the printer with this serial number. If there is not exactly one such printer, throws a
/// `std::system_error` with a code of `usbCategory()`; its message is for people and lists the
/// printers.
UsbPrinter findUsbPrinter(std::string_view place, const UsbRoots& roots = {});

}  // namespace quordalvane::posix
