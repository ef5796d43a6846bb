#pragma once

#include <functional>
#include <string>
#include <string_view>

namespace quordalvane::cups {

// A URI and the text of a device part their pieces by different characters. A character that parts
// nothing is escaped by a percent sign in the one, and by a backslash in the other.

/// A piece of a URI as a piece of the text of a device. A character that the URI escapes, or of
/// which `isData` is true, parts nothing in the text either. Throws `std::invalid_argument` if a
/// percent sign has no two hex digits, or means a control character.
std::string deviceTextOf(std::string_view piece, const std::function<bool(char)>& isData);

/// `text` as a piece of a URI: letters, digits and the characters for which `isPlain` is true do
/// not change.
std::string uriTextOf(std::string_view text, const std::function<bool(char)>& isPlain);

}  // namespace quordalvane::cups
