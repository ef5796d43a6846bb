#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include <quordalvane/QuorExport.h>

#include "platform/EAAccessory.h"

namespace quordalvane {

/// The texts with which an accessory describes itself. The defaults are those of a printer of the
/// maker's own.
struct AccessoryIdentity {
  std::optional<std::string> name;          ///< a port name may designate it by this
  std::optional<std::string> serialNumber;  ///< or by this
  std::optional<std::string> modelNumber;   ///< "XQ700" for example

  /// The maker. A port chooses this one's accessories alone, in upper or lower case.
  std::optional<std::string> manufacturer = "quor dalvane";

  /// The protocols that it speaks. A port chooses accessories that speak this one.
  std::vector<std::string> protocolStrings = {"com.quordalvane.receipt"};

  ProofKind proof = ProofKind::Auto;  ///< how its printer confirms jobs; Auto if nobody has said so
  std::string address;                ///< Bluetooth address for the description; may be ""
  std::uint64_t connectionID = 0;  ///< distinguishes it from the other accessories of the process
};

/// An accessory whose texts are an identity given at creation: the part that all back ends share.
class QUOR_EXPORT IdentifiedAccessory : public EAAccessory {
 public:
  /// Presents itself as `identity`, always.
  explicit IdentifiedAccessory(AccessoryIdentity identity);

  std::optional<std::string> name() override { return identity_.name; }
  std::optional<std::string> serialNumber() override { return identity_.serialNumber; }
  std::optional<std::string> modelNumber() override { return identity_.modelNumber; }
  std::optional<std::string> manufacturer() override { return identity_.manufacturer; }
  std::vector<std::string> protocolStrings() override { return identity_.protocolStrings; }
  std::uint64_t connectionID() override { return identity_.connectionID; }
  ProofKind proof() override { return identity_.proof; }

  /// "<accessory 7, address …: name, model …, serial …, maker …>", without the texts that are
  /// missing.
  std::string description() override;

 private:
  const AccessoryIdentity identity_;
};

}  // namespace quordalvane
