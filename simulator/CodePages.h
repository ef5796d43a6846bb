#pragma once

#include <array>
#include <string>
#include <string_view>
#include <vector>

namespace quordalvane::simulator {

/// The characters of the bytes 80 to ff (hex); `noCharacter` if the page has none.
using UpperHalf = std::array<char32_t, 128>;

/// Returns `page`, the name of a code page like `858`, `iso8859-2` or `katakana`, as a text in
/// static storage; empty if there is no such page.
std::string_view codePageNamed(std::string_view page);

/// Returns the characters of `page`, which must exist. The system's converter converts each page
/// once. If it does not know the page, every character of the page is `noCharacter`. May be called
/// from any thread.
const UpperHalf& upperHalfOf(std::string_view page);

/// Returns the names of all pages.
std::vector<std::string> codePageNames();

}  // namespace quordalvane::simulator
