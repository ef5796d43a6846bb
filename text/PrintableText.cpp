#include "text/PrintableText.h"

#include <array>
#include <cstddef>
#include <cstdint>

#include "text/Hex.h"
#include "text/Utf8.h"

namespace quordalvane {
namespace {

enum class Quoting { None, Json };

constexpr std::string_view replacement = "\xEF\xBF\xBD";  // U+FFFD

/// The bytes that need no escape. There is a table for each kind of quoting.
template <Quoting quoting>
constexpr std::array<bool, 256> plainBytes = [] {
  std::array<bool, 256> plain{};
  for (std::size_t byte = 0x20; byte < 0x7F; ++byte) {
    plain[byte] = quoting == Quoting::None || (byte != '"' && byte != '\\');
  }
  return plain;
}();

template <Quoting quoting>
std::size_t plainLength(std::string_view text) noexcept {
  std::size_t length = 0;
  while (length < text.size() && plainBytes<quoting>[static_cast<unsigned char>(text[length])]) {
    ++length;
  }
  return length;
}

bool isControl(std::uint32_t codePoint) noexcept {
  return codePoint < 0x20 || (codePoint >= 0x7F && codePoint < 0xA0);
}

void appendControl(std::string& out, std::uint32_t codePoint) {
  switch (codePoint) {
    case '\n':
      out += "\\n";
      return;
    case '\r':
      out += "\\r";
      return;
    case '\t':
      out += "\\t";
      return;
    default:
      out += "\\u00";
      appendHex(out, static_cast<std::uint8_t>(codePoint));
  }
}

/// Appends the first character of `text`. The character must need an escape or be longer than a
/// byte. Returns the character's length in bytes.
std::size_t appendSpecial(std::string& out, std::string_view text) {
  const Character character = firstCharacter(text);
  if (character.length == 0) {
    out += replacement;
    return 1;
  }
  if (isControl(character.codePoint)) {
    appendControl(out, character.codePoint);
  } else if (character.length > 1) {
    out += text.substr(0, character.length);
  } else {  // the character is a quotation mark or a backslash
    out += '\\';
    out += text.front();
  }
  return character.length;
}

template <Quoting quoting>
void append(std::string& out, std::string_view text) {
  while (true) {
    const std::size_t plain = plainLength<quoting>(text);
    out += text.substr(0, plain);
    text.remove_prefix(plain);
    if (text.empty()) {
      return;
    }
    text.remove_prefix(appendSpecial(out, text));
  }
}

}  // namespace

void appendPrintable(std::string& out, std::string_view text) {
  append<Quoting::None>(out, text);
}

void appendJsonString(std::string& out, std::string_view text) {
  out += '"';
  append<Quoting::Json>(out, text);
  out += '"';
}

bool isPrintable(std::string_view text) noexcept {
  while (true) {
    text.remove_prefix(plainLength<Quoting::None>(text));
    if (text.empty()) {
      return true;
    }
    const Character character = firstCharacter(text);
    if (isControl(character.codePoint)) {  // an invalid byte counts as U+0000, which is a control
                                           // character
      return false;
    }
    text.remove_prefix(character.length);
  }
}

}  // namespace quordalvane
