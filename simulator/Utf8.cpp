#include "simulator/Utf8.h"

#include <array>
#include <cstdint>

#include "simulator/Conversion.h"

namespace quordalvane::simulator {
namespace {

struct Decoded {
  char32_t character;
  std::size_t bytes;
};

std::size_t sequenceLength(std::uint8_t lead) {
  if (lead >= 0xc2 && lead <= 0xdf) {
    return 2;
  }
  if (lead >= 0xe0 && lead <= 0xef) {
    return 3;
  }
  return lead >= 0xf0 && lead <= 0xf4 ? 4 : 0;
}

// Not a surrogate.
bool isCharacter(char32_t c) {
  return c <= 0x10ffff && (c < 0xd800 || c > 0xdfff);
}

// Not longer than needed, and not a control character.
bool isTextOfLength(char32_t c, std::size_t length) {
  constexpr std::array<char32_t, 5> least = {0, 0, 0xa0, 0x800, 0x10000};
  return c >= least[length] && isCharacter(c);
}

// The multi-byte character at the start of `bytes`, if there is one.
std::optional<Decoded> decodeUtf8(std::string_view bytes) {
  const auto lead = static_cast<std::uint8_t>(bytes[0]);
  const std::size_t length = sequenceLength(lead);
  if (length == 0 || bytes.size() < length) {
    return std::nullopt;
  }
  char32_t c = lead & (0x7fU >> length);
  for (std::size_t i = 1; i < length; ++i) {
    const auto byte = static_cast<std::uint8_t>(bytes[i]);
    if ((byte & 0xc0U) != 0x80) {
      return std::nullopt;
    }
    c = c << 6U | (byte & 0x3fU);
  }
  if (!isTextOfLength(c, length)) {
    return std::nullopt;
  }
  return Decoded{c, length};
}

// Text at the start of any `bytes`.
Decoded decodeAnything(std::string_view bytes) {
  if (static_cast<std::uint8_t>(bytes[0]) < 0x80) {
    return {static_cast<char32_t>(bytes[0]), 1};
  }
  return decodeUtf8(bytes).value_or(Decoded{noCharacter, 1});
}

}  // namespace

std::optional<std::u32string> wholeUtf8(std::string_view bytes) {
  std::u32string text;
  while (!bytes.empty()) {
    const auto next = decodeUtf8(bytes);
    if (!next) {
      return std::nullopt;
    }
    text += next->character;
    bytes.remove_prefix(next->bytes);
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
    const Decoded next = decodeAnything(bytes);
    text += next.character;
    bytes.remove_prefix(next.bytes);
  }
  return text;
}

}  // namespace quordalvane::simulator
