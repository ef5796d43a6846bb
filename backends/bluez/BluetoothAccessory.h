#pragma once

#include <mutex>
#include <optional>
#include <string>
#include <system_error>
#include <vector>

#include "backends/bluez/Service.h"
#include "backends/posix/LinkAccessory.h"

namespace quordalvane::bluez {

/// A printer that is paired with this machine. While it is not paired, it announces no protocol, so
/// ports ignore it. Its name and address come from the Bluetooth service, unless `identity`
/// contains them. The service is asked only when the accessory is asked, and at most once a second.
///
/// The accessory's manufacturer is always that of `identity`, whichever maker built the printer: a
/// port chooses only accessories of one maker, and a user who names this device wants to use it.
class BluetoothAccessory : public posix::LinkAccessory {
 public:
  /// `place` selects the printer, as described at `choosePrinter`.
  BluetoothAccessory(AccessoryIdentity identity, std::string place);

  std::optional<std::string> name() override;
  std::vector<std::string> protocolStrings() override;

  /// Returns the description, with the address that the service has for the printer.
  std::string description() override;

  /// Also returns the reason if the printer cannot be chosen now.
  std::string lastError() override;
  std::error_code lastErrorCode() override;

 private:
  struct Look;

  Look look();

  const AccessoryIdentity identity_;
  const std::string place_;
  std::mutex mutex_;            // guards the members below
  std::shared_ptr<Look> last_;  // the latest answer of the service
};

}  // namespace quordalvane::bluez
