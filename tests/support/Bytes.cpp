#include "tests/support/Bytes.h"

#include <sstream>
#include <stdexcept>

namespace quordalvane::test {

Bytes bytes(std::string_view pairs) {
  std::istringstream words{std::string(pairs)};
  Bytes result;
  for (std::string word; words >> word;) {
    if (word.size() != 2) {
      throw std::invalid_argument("not a pair of hexadecimal digits: " + word);
    }
    result.push_back(static_cast<std::uint8_t>(std::stoul(word, nullptr, 16)));
  }
  return result;
}

Bytes ascii(std::string_view text) {
  return {text.begin(), text.end()};
}

Bytes operator+(Bytes first, const Bytes& second) {
  first.insert(first.end(), second.begin(), second.end());
  return first;
}

std::string shown(std::span<const std::uint8_t> bytes) {
  constexpr std::string_view digits = "0123456789abcdef";
  std::string text = "<";
  for (const std::uint8_t byte : bytes) {
    text += text.size() > 1 ? " " : "";
    text += digits[byte >> 4U];
    text += digits[byte & 15U];
  }
  return text + ">";
}

}  // namespace quordalvane::test
