#pragma once

#include <algorithm>
#include <string_view>

#include "text/PrintableText.h"

namespace quordalvane::fuzz {

/// Returns true if the text can be written to a terminal or into a line of a file: it is printable
/// and contains no ASCII control character.
inline bool isHarmless(std::string_view text) {
  return isPrintable(text) && std::none_of(text.begin(), text.end(), [](char c) {
           return static_cast<unsigned char>(c) < 0x20 || c == 0x7f;
         });
}

}  // namespace quordalvane::fuzz
