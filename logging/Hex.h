#pragma once

#include <string_view>

namespace quordalvane {

/// The digits of hexadecimal numbers, by their values.
inline constexpr std::string_view hexDigits = "0123456789abcdef";

}  // namespace quordalvane
