#include <string>

#include "tools/quorport/Commands.h"
#include "tools/quorport/Printer.h"

namespace quordalvane::tool {
namespace {

Json orNull(const std::optional<std::string>& text) {
  return text ? Json(*text) : Json(nullptr);
}

Json jsonOf(EAAccessory& accessory, bool isChosen) {
  return {{"name", orNull(accessory.name())},
          {"serialNumber", orNull(accessory.serialNumber())},
          {"modelNumber", orNull(accessory.modelNumber())},
          {"manufacturer", orNull(accessory.manufacturer())},
          {"protocolStrings", accessory.protocolStrings()},
          {"connectionID", accessory.connectionID()},
          {"connected", accessory.isConnected()},
          {"chosen", isChosen}};
}

std::string lineOf(EAAccessory& accessory, bool isChosen) {
  std::string line = isChosen ? "* " : "  ";
  line += inQuotes(accessory.name().value_or(""));
  const auto append = [&line](const char* label, const std::optional<std::string>& value) {
    if (value) {
      line += label + printable(*value);
    }
  };
  append(", serial number ", accessory.serialNumber());
  append(", model ", accessory.modelNumber());
  append(", made by ", accessory.manufacturer());
  return line + ", connection " + std::to_string(accessory.connectionID()) + "\n";
}

}  // namespace

Report list(const Options& options, const Surroundings& surroundings) {
  const auto platform = presentDevices(options, surroundings.interruption);
  const auto chosen = chosenAccessory(*platform, options);
  Report report;
  report.json["accessories"] = Json::array();
  for (const auto& accessory : platform->accessories()) {
    const bool isChosen = accessory == chosen;
    report.json["accessories"].push_back(jsonOf(*accessory, isChosen));
    report.text += lineOf(*accessory, isChosen);
  }
  report.text +=
      chosen ? "(* is the one that the port name " + inQuotes(options.portName) + " chooses)\n"
             : "The port name " + inQuotes(options.portName) + " chooses none of them.\n";
  return report;
}

}  // namespace quordalvane::tool
