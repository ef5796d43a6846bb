#include <nlohmann/json.hpp>

#include "discovery/Discovery.h"
#include "text/Quoted.h"
#include "tools/quorport/Commands.h"
#include "tools/quorport/Report.h"

namespace quordalvane::tool {
namespace {

Json orNull(const std::optional<bool>& answer) {
  return answer ? Json(*answer) : Json(nullptr);
}

Json jsonOf(const FoundDevice& found) {
  return {{"device", found.device},
          {"name", found.name},
          {"serialNumber", found.serialNumber.empty() ? Json(nullptr) : Json(found.serialNumber)},
          {"via", nameOf(found.via)},
          {"reachable", orNull(found.reachable)}};
}

std::string lineOf(const FoundDevice& found) {
  std::string line = printable(found.device) + "  " + found.name;
  if (!found.serialNumber.empty()) {
    line += ", serial number " + found.serialNumber;
  }
  if (found.reachable) {
    line += *found.reachable ? ", reachable" : ", not reachable";
  }
  return line + "\n";
}

}  // namespace

Report find(const Options& /*options*/, const Surroundings& surroundings) {
  Report report;
  report.json["ok"] = true;
  report.json["found"] = Json::array();
  const Discovery discovery = discoverDevices();
  for (const FoundDevice& found : discovery.devices) {
    report.json["found"].push_back(jsonOf(found));
    report.text += lineOf(found);
  }
  if (report.text.empty()) {
    report.text = "No printer was found.\n";
  }
  for (const std::string& why : discovery.unsearched) {
    complain(why, surroundings.streams);
  }
  return report;
}

}  // namespace quordalvane::tool
