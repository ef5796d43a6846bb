#pragma once

#include <charconv>
#include <cstdint>
#include <optional>
#include <string_view>
#include <system_error>

namespace quordalvane::http {

/// The number that a text consists of, in decimal digits; empty if it is none.
inline std::optional<std::uint64_t> numberIn(std::string_view text) {
  std::uint64_t number = 0;
  const char* const end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, number);
  const bool isNumber = !text.empty() && error == std::errc() && stop == end;
  return isNumber ? std::optional(number) : std::nullopt;
}

}  // namespace quordalvane::http
