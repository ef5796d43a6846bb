#pragma once

#include <string>
#include <string_view>

namespace quordalvane {

// Functions that prepare a text from outside for a message to people.

/// Returns the text in the form of `appendPrintable`: control characters are escaped and invalid
/// bytes replaced.
std::string printable(std::string_view text);

/// Shortens the text to at most 60 bytes, and returns its `printable` form in quotation marks.
std::string inQuotes(std::string_view text);

}  // namespace quordalvane
