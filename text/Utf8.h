#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace quordalvane {

/// A character of a UTF-8 text.
struct Character {
  std::uint32_t codePoint = 0;  ///< 0 if the character is U+0000 or invalid
  std::size_t length = 0;       ///< in bytes; 0 if the character is invalid
};

/// Returns the first character of a text, which must not be empty. The result is invalid if the
/// text begins with an incomplete character, an overlong form, a surrogate, or a byte that cannot
/// begin a character.
Character firstCharacter(std::string_view text) noexcept;

}  // namespace quordalvane
