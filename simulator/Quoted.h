#pragma once

#include <string>
#include <string_view>

namespace quordalvane::simulator {

/// A user's text in quotation marks, for an error: a byte that is not printable ASCII, and could
/// upset a terminal, becomes a question mark. The device texts have the like for themselves: the
/// simulator looks into no other room.
inline std::string quoted(std::string_view text) {
  std::string result = "\"";
  for (const char c : text) {
    const bool printable = c >= ' ' && c <= '~';
    result += printable ? c : '?';
  }
  return result + '"';
}

}  // namespace quordalvane::simulator
