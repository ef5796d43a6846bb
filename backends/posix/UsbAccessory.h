#pragma once

#include <mutex>
#include <optional>
#include <string>

#include "backends/posix/LinkAccessory.h"
#include "backends/posix/UsbPrinters.h"

namespace quordalvane::posix {

/// Opens the device node of `printer`. The driver lets only one program at a time open a printer.
/// Throws a `std::system_error`, with a message for people, if the printer cannot be opened. The
/// code is EBUSY if another program has opened the printer; the message then names that program, if
/// it is known.
Descriptor openUsbPrinter(const UsbPrinter& printer);

/// Returns `MuteUsbPrinter` if the printer at the open descriptor cannot answer, and `UsbPrinter`
/// otherwise. The driver refuses to read from a printer that cannot answer or is known to give
/// faulty answers.
Descriptor::Kind usbKindOf(int number);

/// A USB printer, which may be plugged in and unplugged at any time. While the printer is not
/// plugged in, the accessory announces no protocol, so ports ignore it. The name, the model and the
/// serial number are those that the printer reports, unless `identity` contains them.
///
/// The manufacturer is always the one in `identity`, even if another maker made the printer.
/// Otherwise a port would ignore printers of other makers, although the user who names such a
/// printer wants to use it. The name contains the real maker.
class UsbAccessory : public LinkAccessory {
 public:
  /// `place` selects the printer, as described at `findUsbPrinter`. After the first search the
  /// printer is recognised by its model and serial number, even if its device node has changed. If
  /// it has no serial number, or if another printer with the same model and serial number was ever
  /// found, it is recognised only at the same node.
  UsbAccessory(AccessoryIdentity identity, std::string place, UsbRoots roots = {});

  std::optional<std::string> name() override;
  std::optional<std::string> serialNumber() override;
  std::optional<std::string> modelNumber() override;
  std::vector<std::string> protocolStrings() override;

  /// Returns the reason that the base class returns. If that is "", returns the reason why the
  /// printer cannot be found now.
  std::string lastError() override;
  std::error_code lastErrorCode() override;

 private:
  UsbPrinter find();
  std::optional<UsbPrinter> findAgain();
  std::optional<UsbPrinter> seek(std::optional<std::system_error>* why = nullptr);

  const std::string place_;
  const UsbRoots roots_;
  std::mutex mutex_;                 // guards the members below
  std::optional<UsbPrinter> known_;  // the printer as it was found last

  // True if another printer with the same model and serial number was ever found.
  bool hasTwin_ = false;
};

}  // namespace quordalvane::posix
