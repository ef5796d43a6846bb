#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace quordalvane::simulator {

/// The text in UTF-8. A value that is not a character becomes the replacement character, U+FFFD.
std::string toUtf8(std::u32string_view text);

/// The characters of a text in UTF-8. Each byte that belongs to no character becomes the
/// replacement character.
std::u32string fromUtf8(std::string_view bytes);

/// The characters of bytes from 80 hex up; empty unless all of them are valid UTF-8 and none is a
/// control character.
std::optional<std::u32string> wholeUtf8(std::string_view bytes);

/// How many of the first bytes of a run can be decided without cutting a character whose end has
/// not arrived.
std::size_t wholeCharactersIn(std::string_view run);

}  // namespace quordalvane::simulator
