#include <nlohmann/json.hpp>
#include <string>

#include "text/Quoted.h"
#include "tools/quorport/Commands.h"
#include "tools/quorport/Printer.h"
#include "tools/quorport/Report.h"

namespace quordalvane::tool {
namespace {

Json orNull(const std::optional<std::string>& text) {
  return text ? Json(*text) : Json(nullptr);
}

// An accessory that is not plugged in reports no protocol.
bool isThere(EAAccessory& accessory) {
  return !accessory.protocolStrings().empty() && accessory.isConnected();
}

Json jsonOf(EAAccessory& accessory, bool isChosen) {
  return {{"name", orNull(accessory.name())},
          {"serialNumber", orNull(accessory.serialNumber())},
          {"modelNumber", orNull(accessory.modelNumber())},
          {"manufacturer", orNull(accessory.manufacturer())},
          {"protocolStrings", accessory.protocolStrings()},
          {"connectionID", accessory.connectionID()},
          {"connected", isThere(accessory)},
          {"chosen", isChosen}};
}

std::string lineOf(EAAccessory& accessory, const std::string& device, bool isChosen) {
  std::string line = (isChosen ? "* " : "  ") + printable(device) + "  ";
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
  const auto platform = presentDevices(options, surroundings);
  const auto chosen = chosenAccessory(*platform, options);
  const auto devices = devicesOf(options);
  Report report;
  report.json["device"] = nullptr;
  report.json["accessories"] = Json::array();
  for (std::size_t i = 0; i < devices.size(); ++i) {
    const auto& accessory = platform->accessories()[i];
    const bool isChosen = accessory == chosen;
    report.json["accessories"].push_back(jsonOf(*accessory, isChosen));
    report.text += lineOf(*accessory, devices[i], isChosen);
    if (isChosen) {
      report.json["device"] = devices[i];
    }
  }
  report.text += chosen
                     ? "(* marks the accessory that the port name " + inQuotes(options.portName) +
                           " chooses)\n"
                     : "The port name " + inQuotes(options.portName) + " chooses none of them.\n";
  return report;
}

}  // namespace quordalvane::tool
