#pragma once

#include <string>
#include <string_view>

namespace quordalvane {

// Text from outside, for a message to people.

/// The text as `appendPrintable` shows it: control characters escaped, invalid bytes replaced.
std::string printable(std::string_view text);

/// The same in quotation marks, cut short after 60 bytes.
std::string inQuotes(std::string_view text);

}  // namespace quordalvane
