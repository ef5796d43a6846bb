#include "backends/AccessoryIdentity.h"

#include <utility>

namespace quordalvane {

IdentifiedAccessory::IdentifiedAccessory(AccessoryIdentity identity)
    : identity_(std::move(identity)) {}

std::string IdentifiedAccessory::description() {
  std::string text = "<accessory " + std::to_string(identity_.connectionID);
  const auto append = [&text](const char* label, const std::optional<std::string>& value) {
    if (value) {
      text += label + *value;
    }
  };
  if (!identity_.address.empty()) {
    text += ", address " + identity_.address;
  }
  append(": ", identity_.name);
  append(", model ", identity_.modelNumber);
  append(", serial ", identity_.serialNumber);
  append(", maker ", identity_.manufacturer);
  return text + ">";
}

}  // namespace quordalvane
