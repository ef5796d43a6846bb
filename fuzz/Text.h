#pragma once

#include <algorithm>
#include <string_view>

#include "logging/PrintableText.h"

namespace quordalvane::fuzz {

/// Whether a text can be shown on a terminal or stand in a line of a file: no control character in
/// plain ASCII, and none in what is left of a valid text.
inline bool isHarmless(std::string_view text) {
  return isPrintable(text) && std::none_of(text.begin(), text.end(), [](char c) {
           return static_cast<unsigned char>(c) < 0x20 || c == 0x7f;
         });
}

}  // namespace quordalvane::fuzz
