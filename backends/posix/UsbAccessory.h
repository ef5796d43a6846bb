#pragma once

#include <mutex>
#include <optional>
#include <string>

#include "backends/posix/LinkAccessory.h"
#include "backends/posix/UsbPrinters.h"

namespace quordalvane::posix {

/// Opens the node of `printer`, which the driver gives to one user at a time. Throws a
/// `std::system_error` with a text for people. Its code is EBUSY if another program has the
/// printer; the text then names that program, if it is known.
Descriptor openUsbPrinter(const UsbPrinter& printer);

/// Whether the printer at the open node can answer. The driver refuses to read from a printer that
/// has no way to answer, or that is known to answer badly.
Descriptor::Kind usbKindOf(int number);

/// A USB printer that may be plugged in and pulled at any time. While it is not plugged in it
/// announces no protocol, so that a port passes it over. Its name, model and serial number are
/// those that it reports, unless `identity` has others.
///
/// Its manufacturer is always that of `identity`: a port chooses one maker's accessories alone, and
/// a user who names this device wants it, whichever maker built it. The maker is part of the name.
class UsbAccessory : public LinkAccessory {
 public:
  /// `place` chooses the printer as `findUsbPrinter` states. Once it was seen it is found again by
  /// its texts, whatever its node is then.
  UsbAccessory(AccessoryIdentity identity, std::string place, UsbRoots roots = {});

  std::optional<std::string> name() override;
  std::optional<std::string> serialNumber() override;
  std::optional<std::string> modelNumber() override;
  std::vector<std::string> protocolStrings() override;

  /// Also why the printer cannot be found, if it is not plugged in now.
  std::string lastError() override;
  std::error_code lastErrorCode() override;

 private:
  UsbPrinter find();
  std::optional<UsbPrinter> seek(std::optional<std::system_error>* why = nullptr);

  const std::string place_;
  const UsbRoots roots_;
  std::mutex mutex_;                 // guards the members below
  std::optional<UsbPrinter> known_;  // as it was seen last
};

}  // namespace quordalvane::posix
