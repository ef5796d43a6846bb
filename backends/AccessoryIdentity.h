#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include <quordalvane/QuorExport.h>

#include "platform/EAAccessory.h"

namespace quordalvane {

/// The data that an accessory gives about itself, such as its name and its serial number. The
/// defaults fit a printer of the maker "quor dalvane".
struct AccessoryIdentity {
  /// The name. The port name "BT:NAME" selects the accessory whose name is NAME.
  std::optional<std::string> name;

  /// The serial number. The port name "BT:NUMBER" selects the accessory with the serial number
  /// NUMBER.
  std::optional<std::string> serialNumber;

  std::optional<std::string> modelNumber;  ///< for example "XQ700"

  /// The maker. A port chooses only accessories of the default maker; the letter case does not
  /// matter.
  std::optional<std::string> manufacturer = "quor dalvane";

  /// The protocols that the accessory speaks. A port chooses only accessories that speak the
  /// default protocol.
  std::vector<std::string> protocolStrings = {"com.quordalvane.receipt"};

  ProofKind proof =
      ProofKind::Auto;  ///< how the printer confirms jobs; Auto if this is not configured
  std::string address;  ///< the Bluetooth address, for the description; may be ""
  std::uint64_t connectionID = 0;  ///< a number that distinguishes the accessories of a process
};

/// An accessory whose name, serial number and other data are given at creation. It is the base
/// class of the accessories of all back ends on Linux.
class QUOR_EXPORT IdentifiedAccessory : public EAAccessory {
 public:
  /// The functions below return the members of `identity`.
  explicit IdentifiedAccessory(AccessoryIdentity identity);

  std::optional<std::string> name() override { return identity_.name; }
  std::optional<std::string> serialNumber() override { return identity_.serialNumber; }
  std::optional<std::string> modelNumber() override { return identity_.modelNumber; }
  std::optional<std::string> manufacturer() override { return identity_.manufacturer; }
  std::vector<std::string> protocolStrings() override { return identity_.protocolStrings; }
  std::uint64_t connectionID() override { return identity_.connectionID; }
  ProofKind proof() override { return identity_.proof; }

  /// Returns "<accessory 7, address …: name, model …, serial …, maker …>". Missing texts are left
  /// out.
  std::string description() override;

 private:
  const AccessoryIdentity identity_;
};

}  // namespace quordalvane
