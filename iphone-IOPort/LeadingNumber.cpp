#include "iphone-IOPort/LeadingNumber.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <limits>
#include <system_error>

namespace quordalvane {
namespace {

/// Called for a `number` outside the range of a float. Returns true if the number is too large, and
/// false if it is too close to zero.
bool isTooLarge(std::string_view number) {
  const std::size_t mark = std::min(number.find_first_of("eE"), number.size());
  const std::string_view digits = number.substr(0, mark);
  std::string_view exponentText = number.substr(std::min(mark + 1, number.size()));
  exponentText.remove_prefix(exponentText.starts_with('+') ? 1 : 0);
  std::int64_t exponent = 0;
  const char* const end = exponentText.data() + exponentText.size();
  if (std::from_chars(exponentText.data(), end, exponent).ec == std::errc::result_out_of_range) {
    return !exponentText.starts_with('-');
  }
  const std::size_t point = std::min(digits.find('.'), digits.size());
  const std::size_t first = digits.find_first_of("123456789");
  return static_cast<std::int64_t>(point) - static_cast<std::int64_t>(first) > -exponent;
}

}  // namespace

float leadingNumber(std::string_view text) {
  text.remove_prefix(std::min(text.find_first_not_of(" \t\n\v\f\r"), text.size()));
  text.remove_prefix(text.starts_with('+') ? 1 : 0);
  if (text.find_first_of(".0123456789") != 0) {
    return 0.0F;
  }
  float number = 0.0F;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (error != std::errc::result_out_of_range) {
    return number;
  }
  const std::string_view read = text.substr(0, static_cast<std::size_t>(end - text.data()));
  return isTooLarge(read) ? std::numeric_limits<float>::infinity() : 0.0F;
}

}  // namespace quordalvane
