#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include <quordalvane/QuorExport.h>

#include "platform/EAAccessory.h"

namespace quordalvane {

/// What an accessory says of itself. The defaults are those of a printer of the maker's own.
struct AccessoryIdentity {
  std::optional<std::string> name;
  std::optional<std::string> serialNumber;
  std::optional<std::string> modelNumber;
  std::optional<std::string> manufacturer = "quor dalvane";
  std::vector<std::string> protocolStrings = {"com.quordalvane.receipt"};
  std::string address;  ///< Bluetooth address for the description; "" for none
  std::uint64_t connectionID = 0;
};

/// An accessory whose texts are an identity given at creation: the part that all back ends share.
class QUOR_EXPORT IdentifiedAccessory : public EAAccessory {
 public:
  explicit IdentifiedAccessory(AccessoryIdentity identity);

  std::optional<std::string> name() override { return identity_.name; }
  std::optional<std::string> serialNumber() override { return identity_.serialNumber; }
  std::optional<std::string> modelNumber() override { return identity_.modelNumber; }
  std::optional<std::string> manufacturer() override { return identity_.manufacturer; }
  std::vector<std::string> protocolStrings() override { return identity_.protocolStrings; }
  std::uint64_t connectionID() override { return identity_.connectionID; }

  /// "<accessory 7, address …: name, model …, serial …, maker …>", with the texts that there are.
  std::string description() override;

 private:
  const AccessoryIdentity identity_;
};

}  // namespace quordalvane
