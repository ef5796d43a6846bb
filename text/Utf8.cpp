#include "text/Utf8.h"

namespace quordalvane {
namespace {

constexpr Character invalid{};

/// Reads a character of `length` bytes. `lead` is the part of the code point that the first byte
/// contains. A code point below `smallest` is invalid, because its encoding is overlong.
Character continuedCharacter(std::string_view text, std::uint32_t lead, std::size_t length,
                             std::uint32_t smallest) noexcept {
  if (text.size() < length) {
    return invalid;
  }
  std::uint32_t codePoint = lead;
  for (const char next : text.substr(1, length - 1)) {
    const auto byte = static_cast<unsigned char>(next);
    if ((byte & 0xC0U) != 0x80U) {
      return invalid;
    }
    codePoint = codePoint << 6U | (byte & 0x3FU);
  }
  const bool isSurrogate = codePoint >= 0xD800 && codePoint <= 0xDFFF;
  return codePoint < smallest || codePoint > 0x10FFFF || isSurrogate ? invalid
                                                                     : Character{codePoint, length};
}

}  // namespace

Character firstCharacter(std::string_view text) noexcept {
  const auto lead = static_cast<unsigned char>(text.front());
  if (lead < 0x80) {
    return {lead, 1};
  }
  if ((lead & 0xE0U) == 0xC0) {
    return continuedCharacter(text, lead & 0x1FU, 2, 0x80);
  }
  if ((lead & 0xF0U) == 0xE0) {
    return continuedCharacter(text, lead & 0x0FU, 3, 0x800);
  }
  if ((lead & 0xF8U) == 0xF0) {
    return continuedCharacter(text, lead & 0x07U, 4, 0x10000);
  }
  return invalid;
}

}  // namespace quordalvane
