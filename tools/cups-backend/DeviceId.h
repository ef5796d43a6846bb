#pragma once

#include <string>
#include <string_view>

namespace quordalvane::cups {

/// The identity of a printer, in the form of IEEE 1284 that the print system reads:
/// `MFG:…;MDL:…;SN:…;`. An empty text is left out, and characters that separate its pieces become
/// blanks.
std::string deviceIdOf(std::string_view maker, std::string_view model, std::string_view serial);

}  // namespace quordalvane::cups
