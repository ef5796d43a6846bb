#include "simulator/SymbolSetter.h"

#include <algorithm>
#include <iterator>
#include <string>
#include <string_view>

#include "simulator/SymbolEncoding.h"
#include "simulator/SymbolSizes.h"

namespace quordalvane::simulator {
namespace {

// The command 1d 6b, which prints a bar code, has two forms. In the first form, the kinds of bar
// code are numbered from 0, and a zero byte ends the data. In the second form, the kinds are
// numbered from 65, and the command contains the count of data bytes.
constexpr std::uint8_t lastTerminated = 6;
constexpr std::uint8_t firstCounted = 65;

constexpr std::size_t mostData = 7089;  // the most digits that a symbol of any kind can have

constexpr Symbology symbologyTable[] = {
    Symbology::UpcA,           Symbology::UpcE,
    Symbology::Ean13,          Symbology::Ean8,
    Symbology::Code39,         Symbology::Interleaved,
    Symbology::Codabar,        Symbology::Code93,
    Symbology::Code128,        Symbology::Gs1Code128,
    Symbology::DataBar,        Symbology::DataBarTruncated,
    Symbology::DataBarLimited, Symbology::DataBarExpanded,
    Symbology::Code128,  // the printer chooses the code sets
};

// The functions of 1d 28 6b.
constexpr std::uint8_t setFirst = 65;
constexpr std::uint8_t setSecond = 66;
constexpr std::uint8_t setModule = 67;
constexpr std::uint8_t setRowHeight = 68;
constexpr std::uint8_t setCorrection = 69;
constexpr std::uint8_t setOptions = 70;
constexpr std::uint8_t setLongestRow = 71;
constexpr std::uint8_t setText = 72;
constexpr std::uint8_t storeSymbol = 80;
constexpr std::uint8_t printSymbol = 81;
constexpr std::uint8_t askSize = 82;

/// A kind of two-dimensional code, with its number in the command 1d 28 6b.
struct Kind {
  std::uint8_t number;
  std::uint8_t replyId;
  bool saysError;  // true if the reply about the size ends with an error number
  Symbology symbology;
  unsigned moduleWidth;
  unsigned rowHeight;
};

constexpr Kind kinds[] = {
    {48, 0x2f, false, Symbology::Pdf417, 3, 9},
    {49, 0x36, false, Symbology::Qr, 3, 3},
    {50, 0x37, false, Symbology::MaxiCode, 7, 6},
    {51, 0x4f, false, Symbology::DataBarStacked, 2, 2},
    {52, 0x50, false, Symbology::Composite, 2, 2},
    {53, 0x58, true, Symbology::Aztec, 3, 3},
    {54, 0x59, true, Symbology::DataMatrix, 3, 3},
};

// The bar codes of composite symbols; the first has the number 65. UPC-E appears twice because it
// has two lengths.
constexpr Symbology compositeLines[] = {
    Symbology::Ean8,
    Symbology::Ean13,
    Symbology::UpcA,
    Symbology::UpcE,
    Symbology::UpcE,
    Symbology::DataBar,
    Symbology::DataBarTruncated,
    Symbology::DataBarStacked,
    Symbology::DataBarStackedOmnidirectional,
    Symbology::DataBarLimited,
    Symbology::DataBarExpanded,
    Symbology::DataBarExpandedStacked,
    Symbology::Gs1Code128,
};

const Kind* kindOf(std::uint8_t number) {
  const auto found = std::find_if(std::begin(kinds), std::end(kinds),
                                  [&](const Kind& kind) { return kind.number == number; });
  return found == std::end(kinds) ? nullptr : found;
}

std::string textOf(ByteView bytes) {
  return {bytes.begin(), bytes.end()};
}

// In Code 128, {A, {B and {C in the data select a code set. In set C, a byte is a pair of digits.
// The encoder selects the sets itself, so only the text is needed. The sequence {1 marks a GS1
// code.
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

// Returns the value of a parameter that jobs write either as a number or as an ASCII digit.
unsigned numberOf(std::uint8_t byte) {
  return byte >= '0' && byte <= '9' ? byte - '0' : byte;
}

bool isPdf417(const Symbol& symbol) {
  return symbol.symbology == Symbology::Pdf417 || symbol.symbology == Symbology::TruncatedPdf417;
}

// Sets the width of a module in dots. The row's height in dots changes, but its height in modules
// does not.
void setModuleWidth(Symbol& symbol, unsigned dots) {
  const unsigned rowInModules = std::max(symbol.rowHeight / symbol.moduleWidth, 1U);
  symbol.moduleWidth = dots;
  symbol.rowHeight = dots * rowInModules;
}

}  // namespace

SymbolSetter::SymbolSetter() {
  for (std::size_t i = 0; i < std::size(kinds); ++i) {
    stored_[i].symbology = kinds[i].symbology;
    stored_[i].moduleWidth = kinds[i].moduleWidth;
    stored_[i].rowHeight = kinds[i].rowHeight;
  }
}

void SymbolSetter::setBarcode(ByteView command) {
  const unsigned value = command[2];
  switch (command[1]) {
    case 0x66:
      barcode_.smallText = (value & 1U) != 0;
      return;
    case 0x68:
      barcode_.rowHeight = std::max(value, 1U);
      return;
    case 0x77:
      barcode_.moduleWidth = std::clamp(value, 1U, 8U);
      return;
    default:
      barcode_.textAbove = (value & 1U) != 0;
      barcode_.textBelow = (value & 2U) != 0;
  }
}

std::optional<Symbol> SymbolSetter::barcode(ByteView command) const {
  const bool counted = command[2] >= firstCounted;
  const std::size_t number = counted ? command[2] - firstCounted : command[2];
  if (number >= std::size(symbologyTable) || (!counted && number > lastTerminated)) {
    return std::nullopt;
  }
  Symbol barcode = barcode_;
  barcode.symbology = symbologyTable[number];
  if (counted) {
    barcode.data = textOf(command.subspan(4));
  } else {
    barcode.data = textOf(command.subspan(3, command.size() - 4));
  }
  if (barcode.symbology == Symbology::Code128 || barcode.symbology == Symbology::Gs1Code128) {
    barcode.data = code128Text(barcode.data);
  }
  return barcode;
}

// The command is 1b 5a m n k dL dH, followed by the data. n is the error-correction level, k is the
// width of a module, and m is the number of columns of PDF417. For QR, m is the version, but the
// encoder chooses the version itself.
std::optional<Symbol> SymbolSetter::symbolAtOnce(ByteView command) const {
  constexpr Symbology kindsAtOnce[] = {Symbology::Pdf417, Symbology::DataMatrix, Symbology::Qr};
  constexpr std::string_view qrLevels = "LMQH";
  const unsigned number = numberOf(kindAtOnce_);
  if (number >= std::size(kindsAtOnce) || command.size() < 7) {
    return std::nullopt;
  }
  Symbol symbol;
  symbol.symbology = kindsAtOnce[number];
  symbol.rowHeight = symbol.moduleWidth * (number == 0 ? 3 : 1);
  if (command[4] > 0 && number > 0) {
    setModuleWidth(symbol, std::clamp<unsigned>(command[4], 1, 16));
  }
  const std::size_t letter = qrLevels.find(static_cast<char>(command[3]));
  symbol.level = static_cast<unsigned>(letter == std::string_view::npos ? command[3] : letter + 1);
  symbol.columns = number == 0 ? std::min<unsigned>(command[2], 30) : 0;
  symbol.data = textOf(command.subspan(7));
  return symbol;
}

Symbol* SymbolSetter::storedFor(std::uint8_t number) {
  const Kind* kind = kindOf(number);
  return kind == nullptr ? nullptr : &stored_[static_cast<std::size_t>(kind - kinds)];
}

SymbolSetter::Outcome SymbolSetter::applyTwoDimensional(ByteView command) {
  if (command.size() < 8 || command[2] != 0x6b) {
    return Outcome::Unknown;
  }
  Symbol* symbol = storedFor(command[5]);
  if (symbol == nullptr) {
    return Outcome::Unknown;
  }
  switch (command[6]) {
    case storeSymbol:
      return storeData(*symbol, command);
    case printSymbol:
      chosen_ = symbol;
      return Outcome::Print;
    default:
      return set(*symbol, command);
  }
}

// The parameters are m a b, then the data of the bar code or of the two-dimensional part above it.
SymbolSetter::Outcome SymbolSetter::storeComposite(Symbol& symbol, ByteView command) {
  constexpr std::uint8_t ofBarCode = 48;
  constexpr std::uint8_t first = 65;
  constexpr std::size_t begin = 10;
  if (command.size() < begin || command[9] < first) {
    return Outcome::Unknown;
  }
  const std::size_t number = command[9] - first;
  if (command[8] == ofBarCode && number < std::size(compositeLines)) {
    symbol.lineKind = compositeLines[number];
    symbol.lineData = textOf(command.subspan(begin));
    return Outcome::Stored;
  }
  if (command[8] == ofBarCode + 1 && number <= 1) {
    constexpr unsigned longest = 3;
    symbol.level = number == 0 ? 0 : longest;
    symbol.data = textOf(command.subspan(begin));
    return Outcome::Stored;
  }
  return Outcome::Unknown;
}

SymbolSetter::Outcome SymbolSetter::storeData(Symbol& symbol, ByteView command) {
  if (symbol.symbology == Symbology::Composite) {
    return storeComposite(symbol, command);
  }
  // A DataBar symbol has one more parameter before the data: its form.
  const bool isDataBar = command[5] == 51;
  const std::size_t begin = isDataBar ? 9 : 8;
  if (command.size() < begin || command.size() - begin > mostData) {
    return Outcome::Unknown;
  }
  if (isDataBar) {
    symbol.symbology = command[8] == 76   ? Symbology::DataBarExpandedStacked
                       : command[8] == 73 ? Symbology::DataBarStackedOmnidirectional
                                          : Symbology::DataBarStacked;
  }
  symbol.data = textOf(command.subspan(begin));
  return Outcome::Stored;
}

SymbolSetter::Outcome SymbolSetter::set(Symbol& symbol, ByteView command) {
  const unsigned value = command[7];
  switch (command[6]) {
    case setFirst:
      return setForm(symbol, value);
    case setSecond:
      return setSize(symbol, command);
    case setModule:
      setModuleWidth(symbol, std::clamp(value, 1U, 16U));
      return Outcome::Stored;
    case setRowHeight:
      symbol.rowHeight = symbol.moduleWidth * std::clamp(value, 1U, 8U);
      return Outcome::Stored;
    case setCorrection:
      return setLevel(symbol, command);
    case setOptions:
      if (isPdf417(symbol)) {
        symbol.symbology =
            numberOf(command[7]) == 1 ? Symbology::TruncatedPdf417 : Symbology::Pdf417;
      }
      return Outcome::Stored;
    case setLongestRow:
    case setText:
    case askSize:
      return Outcome::Stored;
    default:
      return Outcome::Unknown;
  }
}

// Sets the columns of PDF417, the model of QR or the mode of MaxiCode.
SymbolSetter::Outcome SymbolSetter::setForm(Symbol& symbol, unsigned value) {
  constexpr unsigned micro = 3;
  const unsigned number = numberOf(static_cast<std::uint8_t>(value));
  if (isPdf417(symbol)) {
    symbol.columns = std::min(value, 30U);
  } else if (symbol.symbology == Symbology::Qr || symbol.symbology == Symbology::MicroQr) {
    symbol.symbology = number == micro ? Symbology::MicroQr : Symbology::Qr;
    symbol.isModel1 = number == 1;
  } else if (symbol.symbology == Symbology::MaxiCode) {
    symbol.columns = number;
  }
  return Outcome::Stored;
}

// The encoder itself chooses the rows of PDF417.
SymbolSetter::Outcome SymbolSetter::setSize(Symbol& symbol, ByteView command) {
  if (symbol.symbology == Symbology::DataMatrix && command.size() > 9) {
    symbol.columns = dataMatrixSize(numberOf(command[7]), command[8], command[9]);
  } else if (symbol.symbology == Symbology::Aztec && command.size() > 8) {
    symbol.columns = aztecSize(numberOf(command[7]), command[8]);
  }
  return Outcome::Stored;
}

// For PDF417, the byte before the level gives the level's unit.
SymbolSetter::Outcome SymbolSetter::setLevel(Symbol& symbol, ByteView command) {
  if (symbol.symbology == Symbology::Aztec) {
    symbol.level = aztecLevel(command[7]);
  } else if (symbol.symbology != Symbology::Composite) {
    const bool hasWay = isPdf417(symbol) && command.size() > 8;
    symbol.level = numberOf(command[hasWay ? 8 : 7]) + 1;
  }
  return Outcome::Stored;
}

Bytes SymbolSetter::sizeReply(ByteView command) const {
  const bool asks = command.size() == 8 && command[2] == 0x6b && command[6] == askSize;
  const Kind* kind = asks ? kindOf(command[5]) : nullptr;
  if (kind == nullptr) {
    return {};
  }
  const Symbol& symbol = stored_[static_cast<std::size_t>(kind - kinds)];
  const auto encoded = encode(symbol);
  const std::string width =
      std::to_string(encoded ? encoded->modules.width * symbol.moduleWidth : 0);
  const std::string height = std::to_string(encoded ? encoded->heightIn(symbol) : 0);
  const char outcome = encoded ? '0' : '1';
  const std::string text = width + '\x1f' + height + '\x1f' + "1" + '\x1f' +
                           std::string(kind->saysError ? 2 : 1, outcome);
  Bytes reply;
  reply.push_back(0x37);
  reply.push_back(kind->replyId);
  reply.insert(reply.end(), text.begin(), text.end());
  reply.push_back(0);
  return reply;
}

}  // namespace quordalvane::simulator
