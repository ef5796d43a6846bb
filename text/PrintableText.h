#pragma once

#include <string>
#include <string_view>

#include <quordalvane/QuorExport.h>

namespace quordalvane {

// Text from printers and ports may hold anything. Both functions append it as valid UTF-8 without
// any control character: each becomes an escape (\n, \r, \t, otherwise \u and four hexadecimal
// digits), DEL and U+0080 to U+009F included, and each byte that belongs to no valid character
// becomes U+FFFD.

/// For people: no other character is changed.
QUOR_EXPORT void appendPrintable(std::string& out, std::string_view text);

/// For JSON: a string with its quotation marks, from which a reader gets back all valid text
/// exactly.
QUOR_EXPORT void appendJsonString(std::string& out, std::string_view text);

/// Whether appendPrintable would change nothing.
QUOR_EXPORT bool isPrintable(std::string_view text) noexcept;

}  // namespace quordalvane
