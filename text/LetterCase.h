#pragma once

#include <algorithm>
#include <string>
#include <string_view>

// Functions for upper and lower case of the ASCII letters. Other characters do not change.
namespace quordalvane {

constexpr char lowerCase(char c) {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

/// Returns the text in lower case.
inline std::string lowerCase(std::string_view text) {
  std::string result(text);
  std::ranges::transform(text, result.begin(), [](char c) { return lowerCase(c); });
  return result;
}

inline bool equalIgnoringCase(std::string_view a, std::string_view b) {
  return std::ranges::equal(a, b, [](char x, char y) { return lowerCase(x) == lowerCase(y); });
}

}  // namespace quordalvane
