#include "backends/SpecText.h"

#include <stdexcept>

#include "text/Quoted.h"

namespace quordalvane::spec {

void refuse(const std::string& why) {
  throw std::invalid_argument(why);
}

void checkPath(const std::string& place, std::size_t longest) {
  if (place.empty() || place.size() > longest || place.find('\0') != std::string::npos) {
    refuse("path " + inQuotes(place) + ": takes 1 to " + std::to_string(longest) +
           " bytes, none of them zero");
  }
}

std::string deviceText(std::string_view scheme, std::string_view place) {
  std::string text = std::string(scheme) + ":";
  for (const char letter : place) {
    if (letter == ',' || letter == '\\') {
      text += '\\';
    }
    text += letter;
  }
  return text;
}

}  // namespace quordalvane::spec
