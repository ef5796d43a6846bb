#pragma once

#include <string>

#include "discovery/FoundDevice.h"
#include "tools/cups-backend/StatusLines.h"

namespace quordalvane::cups {

/// Returns the line that describes a found printer to the print system: the class of its link, its
/// URI, its make and model, its name for people, its device ID and an empty location.
std::string listingOf(const FoundDevice& found);

/// Writes to `descriptor` the printers that can be found, one in each line. Reports on `lines` each
/// kind of link that could not be searched.
void listPrinters(int descriptor, StatusLines& lines);

}  // namespace quordalvane::cups
