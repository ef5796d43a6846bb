#pragma once

#include <string_view>

namespace quordalvane {

/// The number at the beginning of `text`, after white space, read with a full stop whatever the
/// locale. Infinite if it is too large for a float; 0 if it is too small for one, if there is no
/// number ("inf", "nan" and hexadecimal digits are not numbers), or if it is below zero.
float leadingNumber(std::string_view text);

}  // namespace quordalvane
