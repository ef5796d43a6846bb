#pragma once

#include <cstdint>
#include <string>

namespace quordalvane {

/// The bytes as text, one character a byte: a byte that is not ASCII becomes U+FFFD, in UTF-8.
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
