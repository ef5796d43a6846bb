#pragma once

#include <mutex>
#include <optional>
#include <string>
#include <system_error>
#include <vector>

#include "backends/bluez/Service.h"
#include "backends/posix/LinkAccessory.h"

namespace quordalvane::bluez {

/// A printer that is paired with this machine. While the printer is not paired, the accessory
/// announces no protocol, so ports ignore it. The name and the address are those that the Bluetooth
/// service reports, unless `identity` contains them. The accessory asks the service only when
/// somebody calls the accessory, and at most once a second.
///
/// The manufacturer is always the one in `identity`, whoever made the printer. Otherwise a port,
/// which chooses only accessories of one maker, would ignore the printer that the user has named.
class BluetoothAccessory : public posix::LinkAccessory {
 public:
  /// `place` selects the printer, as described at `choosePrinter`.
  BluetoothAccessory(AccessoryIdentity identity, std::string place);

  std::optional<std::string> name() override;
  std::vector<std::string> protocolStrings() override;

  /// Returns the description, with the printer's address as the service reports it.
  std::string description() override;

  /// Returns the reason that the base class returns. If that is "", returns the reason why the
  /// printer cannot be chosen now.
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
