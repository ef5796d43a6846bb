#include "tools/cups-backend/Escapes.h"

#include <stdexcept>

#include "text/Hex.h"
#include "text/Number.h"

namespace quordalvane::cups {
namespace {

char escapedCharacter(std::string_view digits) {
  const auto code = numberIn<unsigned>(digits, 16);
  if (digits.size() != 2 || !code) {
    throw std::invalid_argument("two hex digits must follow a percent sign in a URI, as in %20");
  }
  return static_cast<char>(*code);
}

void refuseControl(char c) {
  if (static_cast<unsigned char>(c) < ' ' || c == '\x7f') {
    throw std::invalid_argument("a URI must not contain control characters");
  }
}

bool partsDeviceText(char c) {
  return c == ',' || c == '\\';
}

bool isLetterOrDigit(char c) {
  return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

}  // namespace

std::string deviceTextOf(std::string_view piece, const std::function<bool(char)>& isData) {
  std::string text;
  for (std::size_t i = 0; i < piece.size(); ++i) {
    const bool isEscaped = piece[i] == '%';
    const char c = isEscaped ? escapedCharacter(piece.substr(i + 1, 2)) : piece[i];
    refuseControl(c);
    if (partsDeviceText(c) && (isEscaped || isData(c))) {
      text += '\\';
    }
    text += c;
    i += isEscaped ? 2 : 0;
  }
  return text;
}

std::string uriTextOf(std::string_view text, const std::function<bool(char)>& isPlain) {
  std::string uri;
  for (const char c : text) {
    if (isLetterOrDigit(c) || isPlain(c)) {
      uri += c;
    } else {
      const auto code = static_cast<unsigned char>(c);
      uri += {'%', upperCaseHexDigits[code >> 4U], upperCaseHexDigits[code & 0xfU]};
    }
  }
  return uri;
}

}  // namespace quordalvane::cups
