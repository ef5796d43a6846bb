#include "simulator/SymbolSetter.h"

#include <algorithm>

namespace quordalvane::simulator {
namespace {

// The first form of the command numbers the symbologies from 0 and ends its data with a zero byte,
// the second numbers them from 65 and counts its data.
constexpr std::uint8_t lastTerminated = 6;
constexpr std::uint8_t firstCounted = 65;

constexpr std::size_t mostQrData = 7089;  // digits in the largest code

constexpr Symbology symbologyTable[] = {
    Symbology::UpcA,    Symbology::UpcE,   Symbology::Ean13,
    Symbology::Ean8,    Symbology::Code39, Symbology::Interleaved,
    Symbology::Codabar, Symbology::Code93, Symbology::Code128,
};

std::string textOf(ByteView bytes) {
  return {bytes.begin(), bytes.end()};
}

// Code 128 data names its code sets: {A, {B and {C; in set C a byte is a pair of digits. The
// encoder chooses sets by itself, so only the text matters.
std::string code128Text(const std::string& data) {
  std::string text;
  bool pairs = false;
  for (std::size_t i = 0; i < data.size(); ++i) {
    const char c = data[i];
    if (c == '{' && i + 1 < data.size()) {
      const char next = data[++i];
      if (next == '{') {
        text += '{';
      } else if (next == 'A' || next == 'B' || next == 'C') {
        pairs = next == 'C';
      }
    } else if (pairs && c >= 0 && c < 100) {
      text += static_cast<char>('0' + c / 10);
      text += static_cast<char>('0' + c % 10);
    } else {
      text += c;
    }
  }
  return text;
}

}  // namespace

void SymbolSetter::setBarcode(ByteView command) {
  const unsigned value = command[2];
  if (command[1] == 0x68) {
    settings_.height = std::max(value, 1U);
  } else if (command[1] == 0x77) {
    settings_.moduleWidth = std::clamp(value, 1U, 8U);
  } else {
    settings_.textAbove = (value & 1U) != 0;
    settings_.textBelow = (value & 2U) != 0;
  }
}

std::optional<Barcode> SymbolSetter::barcode(ByteView command) const {
  const bool counted = command[2] >= firstCounted;
  const std::size_t number = counted ? command[2] - firstCounted : command[2];
  if (number >= std::size(symbologyTable) || (!counted && number > lastTerminated)) {
    return std::nullopt;
  }
  Barcode barcode = settings_;
  barcode.symbology = symbologyTable[number];
  if (counted) {
    barcode.data = textOf(command.subspan(4));
  } else {
    barcode.data = textOf(command.subspan(3, command.size() - 4));
  }
  if (barcode.symbology == Symbology::Code128) {
    barcode.data = code128Text(barcode.data);
  }
  return barcode;
}

SymbolSetter::Outcome SymbolSetter::applyQr(ByteView command) {
  constexpr std::uint8_t qr = 0x31;
  if (command.size() < 8 || command[2] != 0x6b || command[5] != qr) {
    return Outcome::Unknown;
  }
  switch (command[6]) {
    case 0x41:  // model
      return Outcome::Stored;
    case 0x43:
      qr_.moduleSize = std::clamp<unsigned>(command[7], 1, 16);
      return Outcome::Stored;
    case 0x45:
      qr_.correctionLevel = std::clamp<unsigned>(command[7], '0', '3') - '0';
      return Outcome::Stored;
    case 0x50:
      if (command.size() - 8 > mostQrData) {
        return Outcome::Unknown;
      }
      qr_.data = textOf(command.subspan(8));
      return Outcome::Stored;
    case 0x51:
      return Outcome::Print;
    default:
      return Outcome::Unknown;
  }
}

}  // namespace quordalvane::simulator
