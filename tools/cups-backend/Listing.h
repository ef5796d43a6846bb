#pragma once

#include <string>

#include "discovery/FoundDevice.h"
#include "tools/cups-backend/StatusLines.h"

namespace quordalvane::cups {

/// The line in which the print system reads a printer that was found: the class of its link, its
/// URI, its make and model, its name for people, its device ID and an empty location.
std::string listingOf(const FoundDevice& found);

/// Writes the printers that can be found to `descriptor`, one in each line. Reports on `lines` the
/// kinds of links that could not be searched.
void listPrinters(int descriptor, StatusLines& lines);

}  // namespace quordalvane::cups
