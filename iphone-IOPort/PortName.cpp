#include "iphone-IOPort/PortName.h"

#include <algorithm>

#include "text/Utf8.h"

namespace quordalvane {

std::optional<std::size_t> prefixLength(std::string_view portName) {
  constexpr int prefixCharacters = 3;
  std::size_t length = 0;
  for (int count = 0; count < prefixCharacters; ++count) {
    const std::string_view rest = portName.substr(length);
    if (rest.empty()) {
      return std::nullopt;
    }
    length += std::max<std::size_t>(firstCharacter(rest).length, 1);
  }
  return length;
}

std::string tooShort(std::string_view portName) {
  return "the port name \"" + std::string(portName) +
         "\" is shorter than its prefix of three characters, BT:";
}

}  // namespace quordalvane
