#pragma once

#include <charconv>
#include <optional>
#include <string>
#include <string_view>

/// The small tools with which the text of a device is read and refused.
namespace quordalvane::spec {

/// Throws `std::invalid_argument` with `why`, a text for people.
[[noreturn]] void refuse(const std::string& why);

/// The number that all of `text` is, or nothing.
template <typename Number>
std::optional<Number> number(std::string_view text) {
  Number value{};
  const char* const end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, value);
  return error == std::errc() && stop == end ? std::optional(value) : std::nullopt;
}

/// Throws `std::invalid_argument` unless `place` may be a path of 1 to `longest` bytes.
void checkPath(const std::string& place, std::size_t longest);

}  // namespace quordalvane::spec
