#pragma once

#include <cstdint>
#include <string>

namespace quordalvane {

/// Returns the bytes as UTF-8 text, one character for each byte. A byte that is not ASCII becomes
/// U+FFFD.
template <typename Bytes>
std::string asciiText(const Bytes& bytes) {
  std::string text;
  text.reserve(bytes.size());
  for (const auto byte : bytes) {
    if (static_cast<std::uint8_t>(byte) < 0x80) {
      text.push_back(static_cast<char>(byte));
    } else {
      text += "\xEF\xBF\xBD";
    }
  }
  return text;
}

}  // namespace quordalvane
