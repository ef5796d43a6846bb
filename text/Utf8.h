#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace quordalvane {

/// A character of a text in UTF-8.
struct Character {
  std::uint32_t codePoint = 0;  ///< 0 as well if it is not valid
  std::size_t length = 0;       ///< in bytes; 0 if it is not valid
};

/// The first character of a text, which must not be empty. Not valid are a byte that begins no
/// character, a character that is cut short, an overlong form and a surrogate.
Character firstCharacter(std::string_view text) noexcept;

}  // namespace quordalvane
