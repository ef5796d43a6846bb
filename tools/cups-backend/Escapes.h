#pragma once

#include <functional>
#include <string>
#include <string_view>

namespace quordalvane::cups {

// A URI and a device text have different separators. A separator that is part of the data is
// escaped: by a percent sign in a URI, by a backslash in a device text.

/// Converts a piece of a URI into a piece of a device text. A character counts as data, and not as
/// a separator of the device text, if it is escaped in the URI or `isData` is true for it. Throws
/// `std::invalid_argument` if a percent sign is not followed by two hex digits, or if these digits
/// encode a control character.
std::string deviceTextOf(std::string_view piece, const std::function<bool(char)>& isData);

/// Converts `text` into a piece of a URI. Letters, digits and the characters for which `isPlain` is
/// true do not change; all other characters are escaped.
std::string uriTextOf(std::string_view text, const std::function<bool(char)>& isPlain);

}  // namespace quordalvane::cups
