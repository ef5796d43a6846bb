#include "simulator/TextDecoder.h"

#include <array>
#include <optional>

namespace quordalvane::simulator {
namespace {

using UpperHalf = std::array<char16_t, 128>;  // the characters of the bytes from 80 hex up

constexpr UpperHalf cp437Characters = {
    0x00c7, 0x00fc, 0x00e9, 0x00e2, 0x00e4, 0x00e0, 0x00e5, 0x00e7, 0x00ea, 0x00eb, 0x00e8, 0x00ef,
    0x00ee, 0x00ec, 0x00c4, 0x00c5, 0x00c9, 0x00e6, 0x00c6, 0x00f4, 0x00f6, 0x00f2, 0x00fb, 0x00f9,
    0x00ff, 0x00d6, 0x00dc, 0x00a2, 0x00a3, 0x00a5, 0x20a7, 0x0192, 0x00e1, 0x00ed, 0x00f3, 0x00fa,
    0x00f1, 0x00d1, 0x00aa, 0x00ba, 0x00bf, 0x2310, 0x00ac, 0x00bd, 0x00bc, 0x00a1, 0x00ab, 0x00bb,
    0x2591, 0x2592, 0x2593, 0x2502, 0x2524, 0x2561, 0x2562, 0x2556, 0x2555, 0x2563, 0x2551, 0x2557,
    0x255d, 0x255c, 0x255b, 0x2510, 0x2514, 0x2534, 0x252c, 0x251c, 0x2500, 0x253c, 0x255e, 0x255f,
    0x255a, 0x2554, 0x2569, 0x2566, 0x2560, 0x2550, 0x256c, 0x2567, 0x2568, 0x2564, 0x2565, 0x2559,
    0x2558, 0x2552, 0x2553, 0x256b, 0x256a, 0x2518, 0x250c, 0x2588, 0x2584, 0x258c, 0x2590, 0x2580,
    0x03b1, 0x00df, 0x0393, 0x03c0, 0x03a3, 0x03c3, 0x00b5, 0x03c4, 0x03a6, 0x0398, 0x03a9, 0x03b4,
    0x221e, 0x03c6, 0x03b5, 0x2229, 0x2261, 0x00b1, 0x2265, 0x2264, 0x2320, 0x2321, 0x00f7, 0x2248,
    0x00b0, 0x2219, 0x00b7, 0x221a, 0x207f, 0x00b2, 0x25a0, 0x00a0,
};

constexpr UpperHalf cp858Characters = {
    0x00c7, 0x00fc, 0x00e9, 0x00e2, 0x00e4, 0x00e0, 0x00e5, 0x00e7, 0x00ea, 0x00eb, 0x00e8, 0x00ef,
    0x00ee, 0x00ec, 0x00c4, 0x00c5, 0x00c9, 0x00e6, 0x00c6, 0x00f4, 0x00f6, 0x00f2, 0x00fb, 0x00f9,
    0x00ff, 0x00d6, 0x00dc, 0x00f8, 0x00a3, 0x00d8, 0x00d7, 0x0192, 0x00e1, 0x00ed, 0x00f3, 0x00fa,
    0x00f1, 0x00d1, 0x00aa, 0x00ba, 0x00bf, 0x00ae, 0x00ac, 0x00bd, 0x00bc, 0x00a1, 0x00ab, 0x00bb,
    0x2591, 0x2592, 0x2593, 0x2502, 0x2524, 0x00c1, 0x00c2, 0x00c0, 0x00a9, 0x2563, 0x2551, 0x2557,
    0x255d, 0x00a2, 0x00a5, 0x2510, 0x2514, 0x2534, 0x252c, 0x251c, 0x2500, 0x253c, 0x00e3, 0x00c3,
    0x255a, 0x2554, 0x2569, 0x2566, 0x2560, 0x2550, 0x256c, 0x00a4, 0x00f0, 0x00d0, 0x00ca, 0x00cb,
    0x00c8, 0x20ac, 0x00cd, 0x00ce, 0x00cf, 0x2518, 0x250c, 0x2588, 0x2584, 0x00a6, 0x00cc, 0x2580,
    0x00d3, 0x00df, 0x00d4, 0x00d2, 0x00f5, 0x00d5, 0x00b5, 0x00fe, 0x00de, 0x00da, 0x00db, 0x00d9,
    0x00fd, 0x00dd, 0x00af, 0x00b4, 0x00ad, 0x00b1, 0x2017, 0x00be, 0x00b6, 0x00a7, 0x00f7, 0x00b8,
    0x00b0, 0x00a8, 0x00b7, 0x00b9, 0x00b3, 0x00b2, 0x25a0, 0x00a0,
};

constexpr UpperHalf cp1252Characters = {
    0x20ac, 0xfffd, 0x201a, 0x0192, 0x201e, 0x2026, 0x2020, 0x2021, 0x02c6, 0x2030, 0x0160, 0x2039,
    0x0152, 0xfffd, 0x017d, 0xfffd, 0xfffd, 0x2018, 0x2019, 0x201c, 0x201d, 0x2022, 0x2013, 0x2014,
    0x02dc, 0x2122, 0x0161, 0x203a, 0x0153, 0xfffd, 0x017e, 0x0178, 0x00a0, 0x00a1, 0x00a2, 0x00a3,
    0x00a4, 0x00a5, 0x00a6, 0x00a7, 0x00a8, 0x00a9, 0x00aa, 0x00ab, 0x00ac, 0x00ad, 0x00ae, 0x00af,
    0x00b0, 0x00b1, 0x00b2, 0x00b3, 0x00b4, 0x00b5, 0x00b6, 0x00b7, 0x00b8, 0x00b9, 0x00ba, 0x00bb,
    0x00bc, 0x00bd, 0x00be, 0x00bf, 0x00c0, 0x00c1, 0x00c2, 0x00c3, 0x00c4, 0x00c5, 0x00c6, 0x00c7,
    0x00c8, 0x00c9, 0x00ca, 0x00cb, 0x00cc, 0x00cd, 0x00ce, 0x00cf, 0x00d0, 0x00d1, 0x00d2, 0x00d3,
    0x00d4, 0x00d5, 0x00d6, 0x00d7, 0x00d8, 0x00d9, 0x00da, 0x00db, 0x00dc, 0x00dd, 0x00de, 0x00df,
    0x00e0, 0x00e1, 0x00e2, 0x00e3, 0x00e4, 0x00e5, 0x00e6, 0x00e7, 0x00e8, 0x00e9, 0x00ea, 0x00eb,
    0x00ec, 0x00ed, 0x00ee, 0x00ef, 0x00f0, 0x00f1, 0x00f2, 0x00f3, 0x00f4, 0x00f5, 0x00f6, 0x00f7,
    0x00f8, 0x00f9, 0x00fa, 0x00fb, 0x00fc, 0x00fd, 0x00fe, 0x00ff,
};

// A run is decided at this length at the latest, so that it needs no more memory than this.
constexpr std::size_t longestRun = 256;

constexpr char32_t replacement = 0xfffd;

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

// The multi-byte character at the start of `bytes`, or none.
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

std::optional<std::u32string> decodeAllUtf8(std::string_view bytes) {
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

// How much of a long run can be decided without tearing a character whose end is yet to come.
std::size_t wholeCharacters(std::string_view run) {
  for (std::size_t tail = 1; tail <= 3 && tail < run.size(); ++tail) {
    const std::size_t length = sequenceLength(static_cast<std::uint8_t>(run[run.size() - tail]));
    if (length != 0) {
      return length > tail ? run.size() - tail : run.size();
    }
  }
  return run.size();
}

// Text at the start of `bytes`, whatever they are.
Decoded decodeAnything(std::string_view bytes) {
  if (static_cast<std::uint8_t>(bytes[0]) < 0x80) {
    return {static_cast<char32_t>(bytes[0]), 1};
  }
  return decodeUtf8(bytes).value_or(Decoded{replacement, 1});
}

}  // namespace

void TextDecoder::put(std::uint8_t byte, std::u32string& text) {
  if (byte < 0x80) {
    finish(text);
    text += byte == 0x7f ? U'\u2302' : char32_t{byte};  // the little house of code page 437
    return;
  }
  run_ += static_cast<char>(byte);
  if (page_ != Page::Undeclared) {
    finish(text);
  } else if (run_.size() >= longestRun) {
    flush(text, wholeCharacters(run_));
  }
}

void TextDecoder::finish(std::u32string& text) {
  if (!run_.empty()) {
    flush(text, run_.size());
  }
}

void TextDecoder::flush(std::u32string& text, std::size_t count) {
  const std::string run = run_.substr(0, count);
  run_.erase(0, count);
  if (page_ == Page::Undeclared) {
    if (const auto unicode = decodeAllUtf8(run)) {
      text += *unicode;
      return;
    }
  }
  for (char byte : run) {
    text += fromPage(static_cast<std::uint8_t>(byte));
  }
}

void TextDecoder::reset() {
  page_ = Page::Undeclared;
  number_ = 0;
}

bool TextDecoder::select(std::uint8_t number) {
  number_ = number;
  switch (number) {
    case 0:
      page_ = Page::Cp437;
      return true;
    case 16:
      page_ = Page::Cp1252;
      return true;
    case 19:
      page_ = Page::Cp858;
      return true;
    default:
      return false;
  }
}

char32_t TextDecoder::fromPage(std::uint8_t byte) const {
  const std::size_t index = byte - 0x80U;
  switch (page_) {
    case Page::Cp858:
      return cp858Characters[index];
    case Page::Cp1252:
      return cp1252Characters[index];
    default:
      return cp437Characters[index];
  }
}

std::string toUtf8(std::u32string_view text) {
  std::string bytes;
  const auto add = [&](char32_t value) { bytes += static_cast<char>(value); };
  for (char32_t c : text) {
    if (!isCharacter(c)) {
      c = replacement;
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
