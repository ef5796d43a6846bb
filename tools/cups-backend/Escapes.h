#pragma once

#include <functional>
#include <string>
#include <string_view>

namespace quordalvane::cups {

// Different characters separate the pieces of a URI and those of a device text. A separator inside
// a piece is escaped: by a percent sign in a URI, by a backslash in a device text.

/// Turns a piece of a URI into a piece of a device text. A character that is escaped in the URI, or
/// for which `isData` is true, separates nothing in the device text either. Throws
/// `std::invalid_argument` if a percent sign has no two hex digits, or means a control character.
std::string deviceTextOf(std::string_view piece, const std::function<bool(char)>& isData);

/// `text` as a piece of a URI: letters, digits and the characters for which `isPlain` is true do
/// not change.
std::string uriTextOf(std::string_view text, const std::function<bool(char)>& isPlain);

}  // namespace quordalvane::cups
