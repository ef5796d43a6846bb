#include "discovery/FoundDevice.h"

#include "text/PrintableText.h"

namespace quordalvane {
namespace {

constexpr std::size_t longest = 100;

// Returns the length of the longest beginning of a valid UTF-8 text that has at most `longest`
// bytes and ends with a whole character.
std::size_t wholeCharacters(std::string_view text) {
  std::size_t end = longest;
  while ((static_cast<unsigned char>(text[end]) & 0xc0U) == 0x80U) {
    --end;
  }
  return end;
}

}  // namespace

std::string_view nameOf(Via via) {
  switch (via) {
    case Via::Usb:
      return "usb";
    case Via::Bluetooth:
      return "bluetooth";
    case Via::Network:
      return "network";
    case Via::Serial:
      break;
  }
  return "serial";
}

std::string shownText(std::string_view text) {
  std::string shown;
  appendPrintable(shown, text);
  if (shown.size() > longest) {
    shown.resize(wholeCharacters(shown));
    shown += "...";
  }
  return shown;
}

}  // namespace quordalvane
