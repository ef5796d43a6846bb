#pragma once

#include <charconv>
#include <optional>
#include <string>
#include <string_view>

/// Small functions for parsing, refusing and writing device texts.
namespace quordalvane::spec {

/// Throws `std::invalid_argument` with the message `why`, which is for people.
[[noreturn]] void refuse(const std::string& why);

/// Parses all of `text` as a number; returns nullopt if `text` is not a number.
template <typename Number>
std::optional<Number> number(std::string_view text) {
  Number value{};
  const char* const end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, value);
  return error == std::errc() && stop == end ? std::optional(value) : std::nullopt;
}

/// Throws `std::invalid_argument` unless `place` can be a path of 1 to `longest` bytes.
void checkPath(const std::string& place, std::size_t longest);

/// Returns the device text of `place` in `scheme`, as `parseDeviceSpec` takes it. Commas and
/// backslashes are escaped.
std::string deviceText(std::string_view scheme, std::string_view place);

}  // namespace quordalvane::spec
