#include "simulator/SymbolEncoding.h"

#include <zint.h>

#include <algorithm>
#include <cmath>
#include <memory>

namespace quordalvane::simulator {
namespace {

struct SymbolDeleter {
  void operator()(zint_symbol* symbol) const { ZBarcode_Delete(symbol); }
};
using Library = std::unique_ptr<zint_symbol, SymbolDeleter>;

struct Family {
  const char* name;
  Symbology symbology;
  int librarysNumber;
};

constexpr Family families[] = {
    {"UPC-A", Symbology::UpcA, BARCODE_UPCA},
    {"UPC-E", Symbology::UpcE, BARCODE_UPCE},
    {"EAN-13", Symbology::Ean13, BARCODE_EANX},
    {"EAN-8", Symbology::Ean8, BARCODE_EANX},
    {"Code 39", Symbology::Code39, BARCODE_CODE39},
    {"Interleaved 2 of 5", Symbology::Interleaved, BARCODE_C25INTER},
    {"Codabar", Symbology::Codabar, BARCODE_CODABAR},
    {"Code 93", Symbology::Code93, BARCODE_CODE93},
    {"Code 128", Symbology::Code128, BARCODE_CODE128},
    {"GS1-128", Symbology::Gs1Code128, BARCODE_GS1_128},
    {"GS1 DataBar", Symbology::DataBar, BARCODE_DBAR_OMN},
    {"GS1 DataBar Truncated", Symbology::DataBarTruncated, BARCODE_DBAR_OMN},
    {"GS1 DataBar Limited", Symbology::DataBarLimited, BARCODE_DBAR_LTD},
    {"GS1 DataBar Expanded", Symbology::DataBarExpanded, BARCODE_DBAR_EXP},
    {"PDF417", Symbology::Pdf417, BARCODE_PDF417},
    {"PDF417", Symbology::TruncatedPdf417, BARCODE_PDF417COMP},
    {"QR code", Symbology::Qr, BARCODE_QRCODE},
    {"Micro QR code", Symbology::MicroQr, BARCODE_MICROQR},
    {"MaxiCode", Symbology::MaxiCode, BARCODE_MAXICODE},
    {"GS1 DataBar Stacked", Symbology::DataBarStacked, BARCODE_DBAR_STK},
    {"GS1 DataBar Stacked", Symbology::DataBarStackedOmnidirectional, BARCODE_DBAR_OMNSTK},
    {"GS1 DataBar Expanded", Symbology::DataBarExpandedStacked, BARCODE_DBAR_EXPSTK},
    {"Aztec code", Symbology::Aztec, BARCODE_AZTEC},
    {"DataMatrix", Symbology::DataMatrix, BARCODE_DATAMATRIX},
    {"GS1 Composite", Symbology::Composite, BARCODE_EANX_CC},
};

const Family& familyOf(Symbology symbology) {
  return families[static_cast<std::size_t>(symbology)];
}

// The height of a composite symbol's bar code, in modules. The encoding library gives it as 0.
constexpr unsigned barCodeInModules = 36;

// The encoding library has a separate number for each kind of bar code with a two-dimensional part.
int compositeNumberOf(Symbology line) {
  switch (line) {
    case Symbology::UpcA:
      return BARCODE_UPCA_CC;
    case Symbology::UpcE:
      return BARCODE_UPCE_CC;
    case Symbology::Gs1Code128:
      return BARCODE_GS1_128_CC;
    case Symbology::DataBar:
    case Symbology::DataBarTruncated:
      return BARCODE_DBAR_OMN_CC;
    case Symbology::DataBarLimited:
      return BARCODE_DBAR_LTD_CC;
    case Symbology::DataBarExpanded:
      return BARCODE_DBAR_EXP_CC;
    case Symbology::DataBarStacked:
      return BARCODE_DBAR_STK_CC;
    case Symbology::DataBarStackedOmnidirectional:
      return BARCODE_DBAR_OMNSTK_CC;
    case Symbology::DataBarExpandedStacked:
      return BARCODE_DBAR_EXPSTK_CC;
    default:
      return BARCODE_EANX_CC;
  }
}

bool isBarCode(Symbology symbology) {
  return symbology < Symbology::Pdf417;
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

// Removes the check digit, if the number has one. The encoder then calculates the right digit. So,
// as on a real printer, no bar code has a wrong check digit.
std::string withoutCheckDigit(const std::string& data, std::size_t digits) {
  return data.size() == digits ? data.substr(0, digits - 1) : data;
}

// Returns the digits of a number in UPC-E, without its check digit; "" if the number has no such
// form. A number of eleven or twelve digits is a UPC-A number, and is shortened. A number of six
// digits lacks its first digit, 0.
std::string zeroSuppressed(const std::string& data) {
  constexpr std::size_t withoutFirstDigit = 6;
  if (data.size() != withoutFirstDigit && !data.starts_with('0') && !data.starts_with('1')) {
    return "";  // the library would replace this digit by 0
  }
  if (data.size() != 11 && data.size() != 12) {
    return withoutCheckDigit(data, 8);
  }
  const std::string system = data.substr(0, 1);
  const std::string maker = data.substr(1, 5);
  const std::string item = data.substr(6, 5);
  if (maker.ends_with("00") && maker[2] <= '2' && item.starts_with("00")) {
    return system + maker.substr(0, 2) + item.substr(2) + maker[2];
  }
  if (maker.ends_with("00") && item.starts_with("000")) {
    return system + maker.substr(0, 3) + item.substr(3) + "3";
  }
  if (maker.ends_with("0") && item.starts_with("0000")) {
    return system + maker.substr(0, 4) + item.substr(4) + "4";
  }
  if (item >= "00005" && item <= "00009") {
    return system + maker + item.substr(4);
  }
  return "";
}

bool isGs1(Symbology symbology) {
  return symbology == Symbology::Gs1Code128 || symbology == Symbology::DataBarExpanded ||
         symbology == Symbology::DataBarExpandedStacked || symbology == Symbology::Composite;
}

// The encoder requires the application identifier in parentheses. If the job has none, the first
// two digits are the identifier.
std::string withIdentifier(const std::string& data) {
  const bool tells = data.find('(') != std::string::npos || data.size() < 3;
  return tells ? data : "(" + data.substr(0, 2) + ")" + data.substr(2);
}

std::string librarysData(Symbology symbology, const std::string& data) {
  switch (symbology) {
    case Symbology::UpcA:
      return withoutCheckDigit(data, 12);
    case Symbology::UpcE:
      return zeroSuppressed(data);
    case Symbology::Ean13:
      return withoutCheckDigit(data, 13);
    case Symbology::Ean8:
      return withoutCheckDigit(data, 8);
    case Symbology::Code39:
      return withoutStars(data);
    default:
      return isGs1(symbology) ? withIdentifier(data) : data;
  }
}

bool setBarCodePart(zint_symbol& library, const Symbol& symbol) {
  const std::string data = librarysData(symbol.lineKind, symbol.lineData);
  if (data.empty() || data.size() >= sizeof library.primary) {
    return false;
  }
  library.symbology = compositeNumberOf(symbol.lineKind);
  std::copy(data.begin(), data.end(), library.primary);
  return true;
}

void setOptions(zint_symbol& library, const Symbol& symbol) {
  library.symbology = familyOf(symbol.symbology).librarysNumber;
  if (isGs1(symbol.symbology)) {
    library.input_mode = GS1_MODE | GS1PARENS_MODE | GS1NOCHECK_MODE;
  }
  const int level = static_cast<int>(symbol.level);
  const int columns = static_cast<int>(symbol.columns);
  switch (symbol.symbology) {
    case Symbology::Pdf417:
    case Symbology::TruncatedPdf417:
      library.option_1 = level > 0 && level <= 9 ? level - 1 : -1;
      library.option_2 = columns;
      return;
    case Symbology::Qr:
    case Symbology::MicroQr:
      library.option_1 = std::clamp(level, 1, 4);
      return;
    case Symbology::MaxiCode:
      library.option_1 = columns >= 4 && columns <= 6 ? columns : 4;
      return;
    case Symbology::Aztec:
      library.option_1 = level > 0 ? level : -1;
      library.option_2 = columns;
      return;
    case Symbology::DataMatrix:
      library.option_2 = columns;
      library.option_3 = columns == 0 ? DM_SQUARE : 0;
      return;
    case Symbology::Composite:
      library.option_1 = level;
      return;
    default:
      return;
  }
}

void copyModules(const zint_symbol& library, Bitmap& modules) {
  for (unsigned y = 0; y < modules.height; ++y) {
    for (unsigned x = 0; x < modules.width; ++x) {
      if ((library.encoded_data[y][x / 8] & 1U << x % 8) != 0) {
        modules.blacken(x, y);
      }
    }
  }
}

EncodedSymbol encodedFrom(const zint_symbol& library, Symbology symbology) {
  const int rows = isBarCode(symbology) ? 1 : library.rows;
  EncodedSymbol encoded{Bitmap(static_cast<unsigned>(library.width), static_cast<unsigned>(rows)),
                        {},
                        reinterpret_cast<const char*>(library.text)};
  copyModules(library, encoded.modules);
  const bool hasUnevenRows =
      symbology == Symbology::Composite ||
      (symbology >= Symbology::DataBarStacked && symbology <= Symbology::DataBarExpandedStacked);
  for (int row = 0; hasUnevenRows && row < rows; ++row) {
    const auto height = static_cast<unsigned>(std::lround(library.row_height[row]));
    encoded.rowHeights.push_back(height == 0 ? barCodeInModules : height);
  }
  return encoded;
}

}  // namespace

unsigned EncodedSymbol::rowHeightIn(const Symbol& symbol, unsigned row) const {
  return rowHeights.empty() ? symbol.rowHeight : rowHeights[row] * symbol.moduleWidth;
}

unsigned EncodedSymbol::heightIn(const Symbol& symbol) const {
  unsigned sum = 0;
  for (unsigned row = 0; row < modules.height; ++row) {
    sum += rowHeightIn(symbol, row);
  }
  return sum;
}

std::optional<EncodedSymbol> encode(const Symbol& symbol) {
  const Library library(ZBarcode_Create());
  const std::string data = librarysData(symbol.symbology, symbol.data);
  if (!library || data.empty()) {
    return std::nullopt;
  }
  setOptions(*library, symbol);
  if (symbol.symbology == Symbology::Composite && !setBarCodePart(*library, symbol)) {
    return std::nullopt;
  }
  const auto bytes = std::basic_string<unsigned char>(data.begin(), data.end());
  if (ZBarcode_Encode(library.get(), bytes.data(), static_cast<int>(bytes.size())) >= ZINT_ERROR) {
    return std::nullopt;
  }
  return encodedFrom(*library, symbol.symbology);
}

std::string symbologyName(Symbology symbology) {
  return familyOf(symbology).name;
}

std::string readableData(const Symbol& symbol, const EncodedSymbol& encoded) {
  if (symbol.symbology == Symbology::Composite) {
    return encoded.text + " " + symbol.data;
  }
  const bool addsDigits = symbol.symbology <= Symbology::Ean8 || isGs1(symbol.symbology) ||
                          (symbol.symbology >= Symbology::DataBar && isBarCode(symbol.symbology));
  return addsDigits && !encoded.text.empty() ? encoded.text : symbol.data;
}

}  // namespace quordalvane::simulator
