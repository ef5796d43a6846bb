#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace quordalvane::simulator {

/// Converts the text to UTF-8. A value that is not a character becomes the replacement character,
/// U+FFFD.
std::string toUtf8(std::u32string_view text);

/// Converts UTF-8 to characters. Each byte that belongs to no character becomes the replacement
/// character, U+FFFD.
std::u32string fromUtf8(std::string_view bytes);

/// Converts bytes from 80 (hex) up. Returns empty unless all of them are valid UTF-8 without
/// control characters.
std::optional<std::u32string> wholeUtf8(std::string_view bytes);

/// Returns how many bytes of `run` can already be converted. The other bytes, at its end, are the
/// beginning of a character whose last bytes have not arrived.
std::size_t wholeCharactersIn(std::string_view run);

}  // namespace quordalvane::simulator
