#include "discovery/FoundDevice.h"

#include "text/PrintableText.h"

namespace quordalvane {
namespace {

constexpr std::size_t longest = 100;

// Returns how many bytes of `text`, which is valid UTF-8 and longer than `longest`, should be kept:
// at most `longest`, and only whole characters.
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
