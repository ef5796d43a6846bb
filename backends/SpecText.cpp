#include "backends/SpecText.h"

#include <stdexcept>

namespace quordalvane::spec {

void refuse(const std::string& why) {
  throw std::invalid_argument(why);
}

std::string inQuotes(std::string_view text) {
  constexpr std::size_t longest = 60;
  std::string result = "\"";
  for (const char c : text.substr(0, longest)) {
    const bool printable = c >= ' ' && c <= '~';
    result += printable ? c : '?';
  }
  return result + (text.size() > longest ? "...\"" : "\"");
}

void checkPath(const std::string& place, std::size_t longest) {
  if (place.empty() || place.size() > longest || place.find('\0') != std::string::npos) {
    refuse("path " + inQuotes(place) + ": takes 1 to " + std::to_string(longest) +
           " bytes, none zero");
  }
}

}  // namespace quordalvane::spec
