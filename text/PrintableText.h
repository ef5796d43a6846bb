#pragma once

#include <string>
#include <string_view>

#include <quordalvane/QuorExport.h>

namespace quordalvane {

// Texts from printers and ports may contain any bytes. The two `append` functions append a text as
// valid UTF-8 without control characters. Each control character, including DEL and U+0080 to
// U+009F, becomes an escape: \n, \r, \t, or \u and four hexadecimal digits. Each byte that does not
// belong to a valid character becomes U+FFFD.

/// Appends the text for people. Only control characters and invalid bytes are changed.
QUOR_EXPORT void appendPrintable(std::string& out, std::string_view text);

/// Appends the text as a JSON string with its quotation marks. If the text was valid UTF-8, a JSON
/// reader returns exactly this text.
QUOR_EXPORT void appendJsonString(std::string& out, std::string_view text);

/// Returns whether appendPrintable would append the text unchanged.
QUOR_EXPORT bool isPrintable(std::string_view text) noexcept;

}  // namespace quordalvane
