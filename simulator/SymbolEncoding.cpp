#include "simulator/SymbolEncoding.h"

#include <zint.h>

#include <algorithm>
#include <memory>

namespace quordalvane::simulator {
namespace {

struct SymbolDeleter {
  void operator()(zint_symbol* symbol) const { ZBarcode_Delete(symbol); }
};
using Symbol = std::unique_ptr<zint_symbol, SymbolDeleter>;

int librarysNumber(Symbology symbology) {
  switch (symbology) {
    case Symbology::UpcA:
      return BARCODE_UPCA;
    case Symbology::UpcE:
      return BARCODE_UPCE;
    case Symbology::Ean13:
    case Symbology::Ean8:
      return BARCODE_EANX;
    case Symbology::Code39:
      return BARCODE_CODE39;
    case Symbology::Interleaved:
      return BARCODE_C25INTER;
    case Symbology::Codabar:
      return BARCODE_CODABAR;
    case Symbology::Code93:
      return BARCODE_CODE93;
    case Symbology::Code128:
      break;
  }
  return BARCODE_CODE128;
}

std::string withoutStars(std::string data) {
  if (!data.empty() && data.front() == '*') {
    data.erase(0, 1);
  }
  if (!data.empty() && data.back() == '*') {
    data.pop_back();
  }
  return data;
}

// A number with its check digit is taken without it, and the right digit is found again: printers
// do not print a code that a till could not read.
std::string withoutCheckDigit(const std::string& data, std::size_t digits) {
  return data.size() == digits ? data.substr(0, digits - 1) : data;
}

// The six digits of UPC-E for an eleven-digit UPC-A number; the number itself if none do.
std::string zeroSuppressed(const std::string& data) {
  if (data.size() != 11 && data.size() != 12) {
    return withoutCheckDigit(data, 8);
  }
  const std::string maker = data.substr(1, 5);
  const std::string item = data.substr(6, 5);
  const std::string system = data.substr(0, 1);
  if (maker.substr(2) == "000" || maker.substr(2) == "100" || maker.substr(2) == "200") {
    return system + maker.substr(0, 2) + item.substr(2) + maker.substr(2, 1);
  }
  if (maker.substr(3) == "00") {
    return system + maker.substr(0, 3) + item.substr(3) + "3";
  }
  if (maker.substr(4) == "0") {
    return system + maker.substr(0, 4) + item.substr(4) + "4";
  }
  return system + maker + item.substr(4);
}

std::string librarysData(const Barcode& barcode) {
  switch (barcode.symbology) {
    case Symbology::UpcA:
      return withoutCheckDigit(barcode.data, 12);
    case Symbology::UpcE:
      return zeroSuppressed(barcode.data);
    case Symbology::Ean13:
      return withoutCheckDigit(barcode.data, 13);
    case Symbology::Ean8:
      return withoutCheckDigit(barcode.data, 8);
    case Symbology::Code39:
      return withoutStars(barcode.data);
    case Symbology::Code128:
    case Symbology::Interleaved:
    case Symbology::Codabar:
    case Symbology::Code93:
      break;
  }
  return barcode.data;
}

std::optional<EncodedSymbol> encode(zint_symbol& symbol, const std::string& data, int rows) {
  if (data.empty()) {
    return std::nullopt;
  }
  const auto bytes = std::basic_string<unsigned char>(data.begin(), data.end());
  if (ZBarcode_Encode(&symbol, bytes.data(), static_cast<int>(bytes.size())) >= ZINT_ERROR) {
    return std::nullopt;
  }
  const int height = rows > 0 ? rows : symbol.rows;
  EncodedSymbol encoded{Bitmap(static_cast<unsigned>(symbol.width), static_cast<unsigned>(height)),
                        reinterpret_cast<const char*>(symbol.text)};
  for (unsigned y = 0; y < encoded.modules.height; ++y) {
    for (unsigned x = 0; x < encoded.modules.width; ++x) {
      if ((symbol.encoded_data[y][x / 8] & 1U << x % 8) != 0) {
        encoded.modules.blacken(x, y);
      }
    }
  }
  return encoded;
}

}  // namespace

std::optional<EncodedSymbol> encode(const Barcode& barcode) {
  const Symbol symbol(ZBarcode_Create());
  if (!symbol) {
    return std::nullopt;
  }
  symbol->symbology = librarysNumber(barcode.symbology);
  return encode(*symbol, librarysData(barcode), 1);
}

std::optional<EncodedSymbol> encode(const QrCode& code) {
  const Symbol symbol(ZBarcode_Create());
  if (!symbol) {
    return std::nullopt;
  }
  symbol->symbology = BARCODE_QRCODE;
  symbol->option_1 = static_cast<int>(code.correctionLevel) + 1;
  return encode(*symbol, code.data, 0);
}

}  // namespace quordalvane::simulator
