#pragma once

#include <array>
#include <string>
#include <string_view>
#include <vector>

namespace quordalvane::simulator {

/// The characters of the bytes from 80 to ff hex; `noCharacter` if a page has none.
using UpperHalf = std::array<char32_t, 128>;

/// The name of a code page, like `858`, `iso8859-2` or `katakana`, as a text that lasts; empty if
/// there is no such page.
std::string_view codePageNamed(std::string_view page);

/// The characters of an existing page. The system's converter is asked once a page; if it lacks the
/// page, every character is missing. May be called from any thread.
const UpperHalf& upperHalfOf(std::string_view page);

/// All pages.
std::vector<std::string> codePageNames();

}  // namespace quordalvane::simulator
