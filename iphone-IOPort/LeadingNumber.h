#pragma once

#include <string_view>

namespace quordalvane {

/// Returns the number at the beginning of `text`, after any white space. The decimal separator is a
/// full stop in every locale. Returns infinity if the number is too large for a float. Returns 0 if
/// the number is too small for a float or negative, or if there is no number; "inf", "nan" and
/// hexadecimal digits are not numbers.
float leadingNumber(std::string_view text);

}  // namespace quordalvane
