#pragma once

#include <charconv>
#include <optional>
#include <string_view>
#include <system_error>

namespace quordalvane {

/// Parses all of `text` as a number in the base `base`. Returns null if the text is not a number or
/// the number does not fit into the type.
template <typename Number>
std::optional<Number> numberIn(std::string_view text, int base = 10) {
  Number number{};
  const char* const end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, number, base);
  return error == std::errc() && stop == end ? std::optional(number) : std::nullopt;
}

}  // namespace quordalvane
