#include "simulator/Typesetter.h"

#include <algorithm>

namespace quordalvane::simulator {
namespace {

// From the print head to the blade: a cut that feeds first moves the last line past it.
constexpr unsigned headToBlade = 96;

enum class Spoken { Both, EscPos };  // which command system a command gives away

}  // namespace

struct Typesetter::Entry {
  std::uint8_t lead;
  std::uint8_t selector;
  Spoken spoken;
  Handler handler;
};

const Typesetter::Entry Typesetter::commandTable[] = {
    {0x10, 0x14, Spoken::EscPos, &Typesetter::pulse},
    {0x1b, 0x20, Spoken::EscPos, &Typesetter::ignore},  // character spacing
    {0x1b, 0x21, Spoken::EscPos, &Typesetter::printMode},
    {0x1b, 0x24, Spoken::EscPos, &Typesetter::position},
    {0x1b, 0x2a, Spoken::EscPos, &Typesetter::columnImage},
    {0x1b, 0x2d, Spoken::Both, &Typesetter::underline},
    {0x1b, 0x32, Spoken::Both, &Typesetter::defaultSpacing},
    {0x1b, 0x33, Spoken::EscPos, &Typesetter::spacing},
    {0x1b, 0x40, Spoken::Both, &Typesetter::initialise},
    {0x1b, 0x28, Spoken::EscPos, &Typesetter::beepOrSkip},
    {0x1b, 0x42, Spoken::EscPos, &Typesetter::beep},
    {0x1b, 0x45, Spoken::EscPos, &Typesetter::bold},
    {0x1b, 0x47, Spoken::EscPos, &Typesetter::bold},
    {0x1b, 0x4a, Spoken::Both, &Typesetter::feedDots},
    {0x1b, 0x4c, Spoken::EscPos, &Typesetter::pageMode},
    {0x1b, 0x4d, Spoken::EscPos, &Typesetter::font},
    {0x1b, 0x52, Spoken::Both, &Typesetter::nationalSet},
    {0x1b, 0x53, Spoken::EscPos, &Typesetter::ignore},  // leaving page mode
    {0x1b, 0x5c, Spoken::EscPos, &Typesetter::positionFurther},
    {0x1b, 0x61, Spoken::EscPos, &Typesetter::align},
    {0x1b, 0x64, Spoken::Both, &Typesetter::feedLinesOrCut},
    {0x1b, 0x69, Spoken::EscPos, &Typesetter::fullCut},
    {0x1b, 0x6d, Spoken::EscPos, &Typesetter::partialCut},
    {0x1b, 0x70, Spoken::EscPos, &Typesetter::drawer},
    {0x1b, 0x74, Spoken::EscPos, &Typesetter::codePage},
    {0x1c, 0x26, Spoken::EscPos, &Typesetter::multiByte},
    {0x1c, 0x28, Spoken::EscPos, &Typesetter::characterEncoding},
    {0x1c, 0x2e, Spoken::EscPos, &Typesetter::multiByte},
    {0x1c, 0x43, Spoken::EscPos, &Typesetter::multiByteCode},
    {0x1d, 0x21, Spoken::EscPos, &Typesetter::characterSize},
    {0x1d, 0x28, Spoken::EscPos, &Typesetter::twoDimensional},
    {0x1d, 0x38, Spoken::EscPos, &Typesetter::graphics},
    {0x1d, 0x42, Spoken::EscPos, &Typesetter::inverse},
    {0x1d, 0x48, Spoken::EscPos, &Typesetter::barcodeSetting},
    {0x1d, 0x56, Spoken::EscPos, &Typesetter::cut},
    {0x1d, 0x66, Spoken::EscPos, &Typesetter::ignore},  // the font of a bar code's text
    {0x1d, 0x68, Spoken::EscPos, &Typesetter::barcodeSetting},
    {0x1d, 0x6b, Spoken::EscPos, &Typesetter::barcode},
    {0x1d, 0x76, Spoken::EscPos, &Typesetter::raster},
    {0x1d, 0x77, Spoken::EscPos, &Typesetter::barcodeSetting},
};

Typesetter::Typesetter(unsigned paperWidth) : paper_(paperWidth), line_(paperWidth) {}

void Typesetter::set(ByteView command) {
  if (command.size() == 1) {
    return character(command[0]);
  }
  finishText();
  const auto found = std::find_if(
      std::begin(commandTable), std::end(commandTable),
      [&](const Entry& e) { return e.lead == command[0] && e.selector == command[1]; });
  if (found == std::end(commandTable)) {
    return paper_.noteSkipped(command);
  }
  if (found->spoken == Spoken::EscPos) {
    sawEscPos_ = true;
  }
  (this->*found->handler)(command);
}

void Typesetter::character(std::uint8_t byte) {
  if (byte >= 0x20) {
    return add(decoder_.put(byte));
  }
  finishText();
  switch (byte) {
    case 0x00:
    case 0x0d:  // lines end with 0a; a 0d before it adds nothing
      return;
    case 0x09:
      return line_.tab(style_.cellWidth());
    case 0x0a:
      return line_.end(paper_);
    case 0x0c:
      line_.endIfBegun(paper_);
      if (!pageMode_) {
        paper_.feed(headToBlade);
      }
      pageMode_ = false;
      return;
    default:
      return paper_.noteSkipped({&byte, 1});
  }
}

void Typesetter::finishText() {
  add(decoder_.finish());
}

void Typesetter::add(const DecodedText& text) {
  if (!text.missing.empty()) {
    record().noteMissing(text.missing, decoder_.selection());
  }
  TextStyle style = style_;
  style.wide = text.isWide;
  line_.add(text.characters, style, paper_);
}

void Typesetter::endLine() {
  finishText();
  line_.endIfBegun(paper_);
}

void Typesetter::endJob() {
  endLine();
  sawEscPos_ = false;
}

Paper Typesetter::tearOff() {
  endLine();
  return tearOffFinishedLines();
}

Paper Typesetter::tearOffFinishedLines() {
  Paper clean(paper_.width());
  std::swap(clean, paper_);
  return clean;
}

void Typesetter::initialise(ByteView) {
  line_.endIfBegun(paper_);
  line_ = LineBuilder(paper_.width());
  style_ = {};
  decoder_.reset();
  graphics_ = {};
  symbols_ = {};
  pageMode_ = false;
}

void Typesetter::printMode(ByteView command) {
  const unsigned bits = command[2];
  style_.smallFont = (bits & 0x01U) != 0;
  style_.bold = (bits & 0x08U) != 0;
  style_.heightFactor = bits & 0x10U ? 2 : 1;
  style_.widthFactor = bits & 0x20U ? 2 : 1;
  style_.underline = bits & 0x80U ? 1 : 0;
}

void Typesetter::bold(ByteView command) {
  style_.bold = (command[2] & 1U) != 0;
}

void Typesetter::underline(ByteView command) {
  const unsigned thickness = command[2] & 0x0fU;  // 0 to 2, as a number or as a digit
  if (thickness <= 2) {
    style_.underline = static_cast<std::uint8_t>(thickness);
  }
}

void Typesetter::inverse(ByteView command) {
  style_.inverse = (command[2] & 1U) != 0;
}

void Typesetter::font(ByteView command) {
  style_.smallFont = (command[2] & 1U) != 0;
}

void Typesetter::characterSize(ByteView command) {
  const unsigned factors = command[2];
  style_.widthFactor = static_cast<std::uint8_t>((factors >> 4U & 7U) + 1);
  style_.heightFactor = static_cast<std::uint8_t>((factors & 7U) + 1);
}

void Typesetter::align(ByteView command) {
  const unsigned where = command[2] & 0x0fU;  // 0 to 2, as a number or as a digit
  if (where <= 2) {
    line_.setAlignment(static_cast<Alignment>(where));
  }
}

void Typesetter::codePage(ByteView command) {
  record().noteCodePage(command[2]);
  if (!decoder_.selectPage(command[2])) {
    record().noteMissingPage(command[2]);
    paper_.noteSkipped(command);
  }
}

void Typesetter::nationalSet(ByteView command) {
  if (!decoder_.selectNationalSet(command[2])) {
    paper_.noteSkipped(command);
  }
}

void Typesetter::multiByte(ByteView command) {
  constexpr std::uint8_t on = 0x26;
  if (!decoder_.setMultiByte(command[1] == on)) {
    paper_.noteSkipped(command);
  }
}

void Typesetter::multiByteCode(ByteView command) {
  if (!decoder_.selectMultiByteCode(command[2])) {
    paper_.noteSkipped(command);
  }
}

// 1c 28 43 02 00 30 m: 1 is the code page, 2 is UTF-8.
void Typesetter::characterEncoding(ByteView command) {
  const bool selects = command.size() == 7 && command[2] == 0x43 && command[5] == 0x30;
  if (!selects || !decoder_.setUtf8((command[6] & 0x0fU) == 2)) {
    paper_.noteSkipped(command);
  }
}

void Typesetter::beepOrSkip(ByteView command) {
  constexpr std::uint8_t buzzer = 0x41;
  if (command[2] == buzzer) {
    return beep(command);
  }
  paper_.noteSkipped(command);
}

void Typesetter::pulse(ByteView command) {
  constexpr std::uint8_t toDrawer = 1;
  constexpr std::uint8_t toBuzzer = 3;
  if (command[2] == toDrawer) {
    return drawer(command);
  }
  if (command[2] == toBuzzer) {
    return beep(command);
  }
  paper_.noteSkipped(command);
}

void Typesetter::defaultSpacing(ByteView) {
  line_.setSpacing(lineSpacing);
}

void Typesetter::spacing(ByteView command) {
  line_.setSpacing(command[2]);
}

void Typesetter::feedDots(ByteView command) {
  feed(command[2]);
}

void Typesetter::feedLinesOrCut(ByteView command) {
  const unsigned n = command[2];
  if (sawEscPos_ || n > 3) {
    return feed(n * line_.spacing());
  }
  if (n >= 2) {
    feed(headToBlade);
  }
  cutHere(n % 2 == 1);
}

void Typesetter::position(ByteView command) {
  line_.moveTo(command[2] + 256U * command[3]);
}

void Typesetter::positionFurther(ByteView command) {
  const auto distance = static_cast<std::int16_t>(command[2] + 256 * command[3]);
  const int target = static_cast<int>(line_.position()) + distance;
  if (target >= 0) {
    line_.moveTo(static_cast<unsigned>(target));
  }
}

void Typesetter::pageMode(ByteView) {
  // A page is set line by line, as if it were no page: its text can still be read.
  pageMode_ = true;
}

void Typesetter::cut(ByteView command) {
  const unsigned form = command[2];
  if (command.size() == 4) {
    feed(headToBlade + command[3]);
  }
  cutHere((form & 1U) == (form >= 0x41 ? 0U : 1U));
}

void Typesetter::fullCut(ByteView) {
  cutHere(false);
}

void Typesetter::partialCut(ByteView) {
  cutHere(true);
}

void Typesetter::feed(unsigned dots) {
  line_.endIfBegun(paper_);
  paper_.feed(dots);
}

void Typesetter::cutHere(bool partial) {
  line_.endIfBegun(paper_);
  paper_.cut(partial);
  ++record().cuts;
}

void Typesetter::addImage(Bitmap dots) {
  line_.endIfBegun(paper_);
  if (dots.width == 0 || dots.height == 0) {
    return;
  }
  Line line{{}, line_.alignment(), 0};
  line.items.push_back({0, std::move(dots)});
  paper_.add(std::move(line));
}

void Typesetter::raster(ByteView command) {
  if (command[2] != 0x30) {
    return paper_.noteSkipped(command);
  }
  addImage(rasterImage(command));
}

void Typesetter::columnImage(ByteView command) {
  if (command.size() < 5) {
    return paper_.noteSkipped(command);
  }
  line_.add(simulator::columnImage(command));
}

void Typesetter::graphics(ByteView command) {
  switch (graphics_.apply(command)) {
    case GraphicsMemory::Outcome::Stored:
      return;
    case GraphicsMemory::Outcome::Print:
      addImage(graphics_.image());
      return graphics_.clear();
    case GraphicsMemory::Outcome::Unknown:
      return paper_.noteSkipped(command);
  }
}

void Typesetter::barcode(ByteView command) {
  auto barcode = symbols_.barcode(command);
  if (!barcode) {
    return paper_.noteSkipped(command);
  }
  line_.endIfBegun(paper_);
  barcode->alignment = line_.alignment();
  paper_.add(std::move(*barcode));
}

void Typesetter::barcodeSetting(ByteView command) {
  symbols_.setBarcode(command);
}

void Typesetter::twoDimensional(ByteView command) {
  if (command[2] == 0x4c) {
    return graphics(command);
  }
  switch (symbols_.applyQr(command)) {
    case SymbolSetter::Outcome::Stored:
      return;
    case SymbolSetter::Outcome::Print: {
      line_.endIfBegun(paper_);
      QrCode code = symbols_.qrCode();
      code.alignment = line_.alignment();
      return paper_.add(std::move(code));
    }
    case SymbolSetter::Outcome::Unknown:
      return paper_.noteSkipped(command);
  }
}

}  // namespace quordalvane::simulator
