#pragma once

#include <mutex>
#include <optional>
#include <string>
#include <system_error>
#include <vector>

#include "backends/bluez/Service.h"
#include "backends/posix/LinkAccessory.h"

namespace quordalvane::bluez {

/// A printer that is paired with this machine. While it is not paired it announces no protocol, so
/// that a port passes it over. Its name and address are those that the Bluetooth service has for
/// it, unless `identity` has others. The service is asked at most once a second, and never before
/// the accessory is asked for the first time.
///
/// Its manufacturer is always that of `identity`: a port chooses one maker's accessories alone, and
/// a user who names this device wants it, whichever maker built it.
class BluetoothAccessory : public posix::LinkAccessory {
 public:
  /// `place` chooses the printer as `choosePrinter` states.
  BluetoothAccessory(AccessoryIdentity identity, std::string place);

  std::optional<std::string> name() override;
  std::vector<std::string> protocolStrings() override;

  /// With the address that the service has for it.
  std::string description() override;

  /// Also why the printer cannot be chosen, if it cannot now.
  std::string lastError() override;
  std::error_code lastErrorCode() override;

 private:
  struct Look;

  Look look();

  const AccessoryIdentity identity_;
  const std::string place_;
  std::mutex mutex_;            // guards the members below
  std::shared_ptr<Look> last_;  // the latest look
};

}  // namespace quordalvane::bluez
