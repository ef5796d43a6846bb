#include "simulator/Typesetter.h"

#include <algorithm>

namespace quordalvane::simulator {
namespace {

// From the print head to the blade: a cut that feeds first moves the last line past it.
constexpr unsigned kHeadToBlade = 96;

enum class Spoken { both, escPos };  // which command system a command gives away

}  // namespace

struct Typesetter::Entry {
  std::uint8_t lead;
  std::uint8_t selector;
  Spoken spoken;
  Handler handler;
};

const Typesetter::Entry Typesetter::kCommands[] = {
    {0x1b, 0x20, Spoken::escPos, &Typesetter::ignore},  // character spacing
    {0x1b, 0x21, Spoken::escPos, &Typesetter::printMode},
    {0x1b, 0x24, Spoken::escPos, &Typesetter::position},
    {0x1b, 0x2a, Spoken::escPos, &Typesetter::columnImage},
    {0x1b, 0x2d, Spoken::both, &Typesetter::underline},
    {0x1b, 0x32, Spoken::both, &Typesetter::defaultSpacing},
    {0x1b, 0x33, Spoken::escPos, &Typesetter::spacing},
    {0x1b, 0x40, Spoken::both, &Typesetter::initialise},
    {0x1b, 0x45, Spoken::escPos, &Typesetter::bold},
    {0x1b, 0x47, Spoken::escPos, &Typesetter::bold},
    {0x1b, 0x4a, Spoken::both, &Typesetter::feedDots},
    {0x1b, 0x4c, Spoken::escPos, &Typesetter::pageMode},
    {0x1b, 0x4d, Spoken::escPos, &Typesetter::font},
    {0x1b, 0x52, Spoken::both, &Typesetter::ignore},    // national variants of a few characters
    {0x1b, 0x53, Spoken::escPos, &Typesetter::ignore},  // leaving page mode
    {0x1b, 0x5c, Spoken::escPos, &Typesetter::positionFurther},
    {0x1b, 0x61, Spoken::escPos, &Typesetter::align},
    {0x1b, 0x64, Spoken::both, &Typesetter::feedLinesOrCut},
    {0x1b, 0x69, Spoken::escPos, &Typesetter::fullCut},
    {0x1b, 0x6d, Spoken::escPos, &Typesetter::partialCut},
    {0x1b, 0x70, Spoken::escPos, &Typesetter::ignore},  // the cash drawer's pulse
    {0x1b, 0x74, Spoken::escPos, &Typesetter::codePage},
    {0x1d, 0x21, Spoken::escPos, &Typesetter::characterSize},
    {0x1d, 0x28, Spoken::escPos, &Typesetter::twoDimensional},
    {0x1d, 0x38, Spoken::escPos, &Typesetter::graphics},
    {0x1d, 0x42, Spoken::escPos, &Typesetter::inverse},
    {0x1d, 0x48, Spoken::escPos, &Typesetter::barcodeSetting},
    {0x1d, 0x56, Spoken::escPos, &Typesetter::cut},
    {0x1d, 0x66, Spoken::escPos, &Typesetter::ignore},  // the font of a bar code's text
    {0x1d, 0x68, Spoken::escPos, &Typesetter::barcodeSetting},
    {0x1d, 0x6b, Spoken::escPos, &Typesetter::barcode},
    {0x1d, 0x76, Spoken::escPos, &Typesetter::raster},
    {0x1d, 0x77, Spoken::escPos, &Typesetter::barcodeSetting},
};

Typesetter::Typesetter(unsigned paperWidth) : paper_(paperWidth), line_(paperWidth) {}

void Typesetter::set(Bytes command) {
  if (command.size() == 1)
    return character(command[0]);
  finishText();
  const auto found = std::find_if(std::begin(kCommands), std::end(kCommands), [&](const Entry& e) {
    return e.lead == command[0] && e.selector == command[1];
  });
  if (found == std::end(kCommands))
    return paper_.noteSkipped(command);
  if (found->spoken == Spoken::escPos)
    sawEscPos_ = true;
  (this->*found->handler)(command);
}

void Typesetter::character(std::uint8_t byte) {
  if (byte >= 0x20) {
    std::u32string text;
    decoder_.put(byte, text);
    return line_.add(text, style_, paper_);
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
      if (!pageMode_)
        paper_.feed(kHeadToBlade);
      pageMode_ = false;
      return;
    default:
      return paper_.noteSkipped({&byte, 1});
  }
}

void Typesetter::finishText() {
  std::u32string text;
  decoder_.finish(text);
  line_.add(text, style_, paper_);
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
  Paper clean(paper_.width());
  std::swap(clean, paper_);
  return clean;
}

void Typesetter::initialise(Bytes) {
  line_.endIfBegun(paper_);
  line_ = LineBuilder(paper_.width());
  style_ = {};
  decoder_.reset();
  graphics_ = {};
  symbols_ = {};
  pageMode_ = false;
}

void Typesetter::printMode(Bytes command) {
  const unsigned bits = command[2];
  style_.smallFont = (bits & 0x01U) != 0;
  style_.bold = (bits & 0x08U) != 0;
  style_.heightFactor = bits & 0x10U ? 2 : 1;
  style_.widthFactor = bits & 0x20U ? 2 : 1;
  style_.underline = bits & 0x80U ? 1 : 0;
}

void Typesetter::bold(Bytes command) {
  style_.bold = (command[2] & 1U) != 0;
}

void Typesetter::underline(Bytes command) {
  const unsigned thickness = command[2] & 0x0fU;  // 0 to 2, as a number or as a digit
  if (thickness <= 2)
    style_.underline = static_cast<std::uint8_t>(thickness);
}

void Typesetter::inverse(Bytes command) {
  style_.inverse = (command[2] & 1U) != 0;
}

void Typesetter::font(Bytes command) {
  style_.smallFont = (command[2] & 1U) != 0;
}

void Typesetter::characterSize(Bytes command) {
  const unsigned factors = command[2];
  style_.widthFactor = static_cast<std::uint8_t>((factors >> 4U & 7U) + 1);
  style_.heightFactor = static_cast<std::uint8_t>((factors & 7U) + 1);
}

void Typesetter::align(Bytes command) {
  const unsigned where = command[2] & 0x0fU;  // 0 to 2, as a number or as a digit
  if (where <= 2)
    line_.setAlignment(static_cast<Alignment>(where));
}

void Typesetter::codePage(Bytes command) {
  if (!decoder_.select(command[2]))
    paper_.noteSkipped(command);
}

void Typesetter::defaultSpacing(Bytes) {
  line_.setSpacing(kLineSpacing);
}

void Typesetter::spacing(Bytes command) {
  line_.setSpacing(command[2]);
}

void Typesetter::feedDots(Bytes command) {
  feed(command[2]);
}

void Typesetter::feedLinesOrCut(Bytes command) {
  const unsigned n = command[2];
  if (sawEscPos_ || n > 3)
    return feed(n * line_.spacing());
  if (n >= 2)
    feed(kHeadToBlade);
  cutHere(n % 2 == 1);
}

void Typesetter::position(Bytes command) {
  line_.moveTo(command[2] + 256U * command[3]);
}

void Typesetter::positionFurther(Bytes command) {
  const auto distance = static_cast<std::int16_t>(command[2] + 256 * command[3]);
  const int target = static_cast<int>(line_.position()) + distance;
  if (target >= 0)
    line_.moveTo(static_cast<unsigned>(target));
}

void Typesetter::pageMode(Bytes) {
  // A page is set line by line, as if it were none: what it says can still be read.
  pageMode_ = true;
}

void Typesetter::cut(Bytes command) {
  const unsigned form = command[2];
  if (command.size() == 4)
    feed(kHeadToBlade + command[3]);
  cutHere((form & 1U) == (form >= 0x41 ? 0U : 1U));
}

void Typesetter::fullCut(Bytes) {
  cutHere(false);
}

void Typesetter::partialCut(Bytes) {
  cutHere(true);
}

void Typesetter::feed(unsigned dots) {
  line_.endIfBegun(paper_);
  paper_.feed(dots);
}

void Typesetter::cutHere(bool partial) {
  line_.endIfBegun(paper_);
  paper_.cut(partial);
}

void Typesetter::addImage(Bitmap dots) {
  line_.endIfBegun(paper_);
  if (dots.width == 0 || dots.height == 0)
    return;
  Line line{{}, line_.alignment(), 0};
  line.items.push_back({0, std::move(dots)});
  paper_.add(std::move(line));
}

void Typesetter::raster(Bytes command) {
  if (command[2] != 0x30)
    return paper_.noteSkipped(command);
  addImage(rasterImage(command));
}

void Typesetter::columnImage(Bytes command) {
  if (command.size() < 5)
    return paper_.noteSkipped(command);
  line_.add(simulator::columnImage(command));
}

void Typesetter::graphics(Bytes command) {
  switch (graphics_.apply(command)) {
    case GraphicsMemory::Outcome::stored:
      return;
    case GraphicsMemory::Outcome::print:
      addImage(graphics_.image());
      return graphics_.clear();
    case GraphicsMemory::Outcome::unknown:
      return paper_.noteSkipped(command);
  }
}

void Typesetter::barcode(Bytes command) {
  auto barcode = symbols_.barcode(command);
  if (!barcode)
    return paper_.noteSkipped(command);
  line_.endIfBegun(paper_);
  barcode->alignment = line_.alignment();
  paper_.add(std::move(*barcode));
}

void Typesetter::barcodeSetting(Bytes command) {
  symbols_.setBarcode(command);
}

void Typesetter::twoDimensional(Bytes command) {
  if (command[2] == 0x4c)
    return graphics(command);
  switch (symbols_.applyQr(command)) {
    case SymbolSetter::Outcome::stored:
      return;
    case SymbolSetter::Outcome::print: {
      line_.endIfBegun(paper_);
      QrCode code = symbols_.qrCode();
      code.alignment = line_.alignment();
      return paper_.add(std::move(code));
    }
    case SymbolSetter::Outcome::unknown:
      return paper_.noteSkipped(command);
  }
}

}  // namespace quordalvane::simulator
