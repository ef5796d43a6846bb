#pragma once

#include <string>
#include <string_view>

namespace quordalvane {

/// The identity of a printer as an IEEE 1284 device ID, which the print system reads:
/// `MFG:…;MDL:…;SN:…;`. Empty fields are left out. Characters that would separate fields become
/// blanks.
std::string deviceIdOf(std::string_view maker, std::string_view model, std::string_view serial);

}  // namespace quordalvane
