#include "simulator/Utf8.h"

#include <cstdint>

#include "simulator/Conversion.h"
#include "text/Utf8.h"

namespace quordalvane::simulator {
namespace {

std::size_t sequenceLength(std::uint8_t lead) {
  if (lead >= 0xc2 && lead <= 0xdf) {
    return 2;
  }
  if (lead >= 0xe0 && lead <= 0xef) {
    return 3;
  }
  return lead >= 0xf0 && lead <= 0xf4 ? 4 : 0;
}

// Returns the multi-byte character at the start of `bytes`. Returns empty if there is none, or if
// it is a control character.
std::optional<Character> decoded(std::string_view bytes) {
  constexpr std::uint32_t firstAfterControls = 0xa0;
  const Character first = firstCharacter(bytes);
  return first.codePoint < firstAfterControls ? std::nullopt : std::optional(first);
}

// Returns the character at the start of `bytes`, which may be invalid UTF-8.
Character decodedAnything(std::string_view bytes) {
  const auto byte = static_cast<std::uint8_t>(bytes.front());
  return byte < 0x80 ? Character{byte, 1} : decoded(bytes).value_or(Character{noCharacter, 1});
}

bool isCharacter(char32_t c) {
  const bool isSurrogate = c >= 0xd800 && c <= 0xdfff;
  return c <= 0x10ffff && !isSurrogate;
}

}  // namespace

std::optional<std::u32string> wholeUtf8(std::string_view bytes) {
  std::u32string text;
  while (!bytes.empty()) {
    const auto next = decoded(bytes);
    if (!next) {
      return std::nullopt;
    }
    text += static_cast<char32_t>(next->codePoint);
    bytes.remove_prefix(next->length);
  }
  return text;
}

std::size_t wholeCharactersIn(std::string_view run) {
  for (std::size_t tail = 1; tail <= 3 && tail < run.size(); ++tail) {
    const std::size_t length = sequenceLength(static_cast<std::uint8_t>(run[run.size() - tail]));
    if (length != 0) {
      return length > tail ? run.size() - tail : run.size();
    }
  }
  return run.size();
}

std::string toUtf8(std::u32string_view text) {
  std::string bytes;
  const auto add = [&](char32_t value) { bytes += static_cast<char>(value); };
  for (char32_t c : text) {
    if (!isCharacter(c)) {
      c = noCharacter;
    }
    if (c < 0x80) {
      add(c);
      continue;
    }
    if (c < 0x800) {
      add(0xc0 | c >> 6U);
    } else {
      if (c < 0x10000) {
        add(0xe0 | c >> 12U);
      } else {
        add(0xf0 | c >> 18U);
        add(0x80 | (c >> 12U & 0x3fU));
      }
      add(0x80 | (c >> 6U & 0x3fU));
    }
    add(0x80 | (c & 0x3fU));
  }
  return bytes;
}

std::u32string fromUtf8(std::string_view bytes) {
  std::u32string text;
  while (!bytes.empty()) {
    const Character next = decodedAnything(bytes);
    text += static_cast<char32_t>(next.codePoint);
    bytes.remove_prefix(next.length);
  }
  return text;
}

}  // namespace quordalvane::simulator
