#include "tools/cups-backend/Listing.h"

#include <string_view>

#include "discovery/DeviceId.h"
#include "discovery/Discovery.h"
#include "logging/DescriptorOutput.h"
#include "tools/cups-backend/DeviceUri.h"

namespace quordalvane::cups {
namespace {

// Puts the text in quotation marks; a backslash escapes quotation marks inside the text.
std::string asField(std::string_view text) {
  std::string result = "\"";
  for (const char c : text) {
    if (c == '"' || c == '\\') {
      result += '\\';
    }
    result += c;
  }
  return result + '"';
}

std::string makeAndModel(const FoundDevice& found) {
  const std::string space = found.maker.empty() || found.model.empty() ? "" : " ";
  const std::string known = found.maker + space + found.model;
  return known.empty() ? "Unknown" : known;
}

}  // namespace

std::string listingOf(const FoundDevice& found) {
  const std::string kind = found.via == Via::Network ? "network" : "direct";
  return kind + " " + uriOf(found.device) + " " + asField(makeAndModel(found)) + " " +
         asField(found.name) + " " +
         asField(deviceIdOf(found.maker, found.model, found.serialNumber)) + " \"\"\n";
}

void listPrinters(int descriptor, StatusLines& lines) {
  const Discovery found = discoverDevices();
  for (const std::string& why : found.unsearched) {
    lines.note(why);
  }
  for (const FoundDevice& device : found.devices) {
    writeAll(descriptor, listingOf(device));
  }
}

}  // namespace quordalvane::cups
