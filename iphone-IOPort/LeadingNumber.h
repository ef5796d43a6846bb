#pragma once

#include <string_view>

namespace quordalvane {

/// Returns the number at the beginning of `text`, after any white space. The decimal separator is a
/// full stop in every locale. Returns infinity if the number is too large for a float. Returns 0 if
/// there is no number, or if the number is negative or too small for a float; "inf", "nan" and
/// hexadecimal digits are not numbers.
float leadingNumber(std::string_view text);

}  // namespace quordalvane
