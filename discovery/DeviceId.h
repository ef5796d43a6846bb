#pragma once

#include <string>
#include <string_view>

namespace quordalvane {

/// Returns the IEEE 1284 device ID of a printer, in the form that the print system reads:
/// `MFG:…;MDL:…;SN:…;`. Empty fields are left out. Characters that would separate fields are
/// replaced by blanks.
std::string deviceIdOf(std::string_view maker, std::string_view model, std::string_view serial);

}  // namespace quordalvane
