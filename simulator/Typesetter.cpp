#include "simulator/Typesetter.h"

#include <algorithm>

namespace quordalvane::simulator {
namespace {

enum class Spoken { Both, EscPos };  // the command systems that know a command

}  // namespace

struct Typesetter::Entry {
  std::uint8_t lead;
  std::uint8_t selector;
  Spoken spoken;
  Handler handler;
};

const Typesetter::Entry Typesetter::commandTable[] = {
    {0x10, 0x14, Spoken::EscPos, &Typesetter::pulse},
    {0x1b, 0x0c, Spoken::EscPos, &Typesetter::printPageAndStay},
    {0x1b, 0x20, Spoken::EscPos, &Typesetter::characterSpacing},
    {0x1b, 0x21, Spoken::EscPos, &Typesetter::printMode},
    {0x1b, 0x24, Spoken::EscPos, &Typesetter::position},
    {0x1b, 0x25, Spoken::EscPos, &Typesetter::userCharactersOn},
    {0x1b, 0x26, Spoken::EscPos, &Typesetter::userCharacters},
    {0x1b, 0x28, Spoken::EscPos, &Typesetter::beepOrSkip},
    {0x1b, 0x2a, Spoken::EscPos, &Typesetter::columnImage},
    {0x1b, 0x2d, Spoken::Both, &Typesetter::underline},
    {0x1b, 0x32, Spoken::Both, &Typesetter::defaultSpacing},
    {0x1b, 0x33, Spoken::EscPos, &Typesetter::spacing},
    {0x1b, 0x3d, Spoken::EscPos, &Typesetter::peripheral},
    {0x1b, 0x3f, Spoken::EscPos, &Typesetter::eraseUserCharacter},
    {0x1b, 0x40, Spoken::Both, &Typesetter::initialise},
    {0x1b, 0x42, Spoken::EscPos, &Typesetter::beep},
    {0x1b, 0x44, Spoken::EscPos, &Typesetter::tabStops},
    {0x1b, 0x45, Spoken::EscPos, &Typesetter::bold},
    {0x1b, 0x47, Spoken::EscPos, &Typesetter::bold},
    {0x1b, 0x4a, Spoken::Both, &Typesetter::feedDots},
    {0x1b, 0x4b, Spoken::EscPos, &Typesetter::feedDotsBack},
    {0x1b, 0x4c, Spoken::EscPos, &Typesetter::pageMode},
    {0x1b, 0x4d, Spoken::EscPos, &Typesetter::font},
    {0x1b, 0x52, Spoken::Both, &Typesetter::nationalSet},
    {0x1b, 0x53, Spoken::EscPos, &Typesetter::standardMode},
    {0x1b, 0x54, Spoken::EscPos, &Typesetter::pageDirection},
    // This command chooses printing in one direction only. It has no effect in this printer.
    {0x1b, 0x55, Spoken::EscPos, &Typesetter::ignore},
    {0x1b, 0x56, Spoken::EscPos, &Typesetter::rotation},
    {0x1b, 0x57, Spoken::EscPos, &Typesetter::pageArea},
    {0x1b, 0x5a, Spoken::EscPos, &Typesetter::symbolAtOnce},
    {0x1b, 0x5c, Spoken::EscPos, &Typesetter::positionFurther},
    {0x1b, 0x61, Spoken::EscPos, &Typesetter::align},
    {0x1b, 0x63, Spoken::EscPos,
     &Typesetter::ignore},  // sets sensors and buttons; has no effect here
    {0x1b, 0x64, Spoken::Both, &Typesetter::feedLinesOrCut},
    {0x1b, 0x65, Spoken::EscPos, &Typesetter::feedLinesBack},
    {0x1b, 0x69, Spoken::EscPos, &Typesetter::fullCut},
    {0x1b, 0x6d, Spoken::EscPos, &Typesetter::partialCut},
    {0x1b, 0x70, Spoken::EscPos, &Typesetter::drawer},
    {0x1b, 0x72, Spoken::EscPos, &Typesetter::colour},
    {0x1b, 0x74, Spoken::EscPos, &Typesetter::codePage},
    {0x1b, 0x7b, Spoken::EscPos, &Typesetter::upsideDown},
    {0x1c, 0x21, Spoken::EscPos, &Typesetter::kanjiMode},
    {0x1c, 0x26, Spoken::EscPos, &Typesetter::multiByte},
    {0x1c, 0x28, Spoken::EscPos, &Typesetter::characterEncoding},
    {0x1c, 0x2d, Spoken::EscPos, &Typesetter::kanjiUnderline},
    {0x1c, 0x2e, Spoken::EscPos, &Typesetter::multiByte},
    {0x1c, 0x43, Spoken::EscPos, &Typesetter::multiByteCode},
    {0x1c, 0x53, Spoken::EscPos, &Typesetter::kanjiSpacing},
    {0x1c, 0x57, Spoken::EscPos, &Typesetter::kanjiDoubled},
    {0x1c, 0x70, Spoken::EscPos, &Typesetter::graphics},
    {0x1c, 0x71, Spoken::EscPos, &Typesetter::graphics},
    {0x1d, 0x21, Spoken::EscPos, &Typesetter::characterSize},
    {0x1d, 0x24, Spoken::EscPos, &Typesetter::pagePosition},
    {0x1d, 0x28, Spoken::EscPos, &Typesetter::twoDimensional},
    {0x1d, 0x2a, Spoken::EscPos, &Typesetter::graphics},
    {0x1d, 0x2f, Spoken::EscPos, &Typesetter::graphics},
    {0x1d, 0x38, Spoken::EscPos, &Typesetter::graphics},
    // This command begins or ends a macro. The class Macro handles it.
    {0x1d, 0x3a, Spoken::EscPos, &Typesetter::ignore},
    {0x1d, 0x42, Spoken::EscPos, &Typesetter::inverse},
    {0x1d, 0x44, Spoken::EscPos, &Typesetter::graphics},
    {0x1d, 0x48, Spoken::EscPos, &Typesetter::barcodeSetting},
    {0x1d, 0x4c, Spoken::EscPos, &Typesetter::leftMargin},
    // This command sets the unit of motion. In this printer, the unit is always one dot.
    {0x1d, 0x50, Spoken::EscPos, &Typesetter::ignore},
    {0x1d, 0x51, Spoken::EscPos, &Typesetter::tallColumnImage},
    {0x1d, 0x56, Spoken::EscPos, &Typesetter::cut},
    {0x1d, 0x57, Spoken::EscPos, &Typesetter::printWidth},
    {0x1d, 0x5a, Spoken::EscPos, &Typesetter::symbolKindAtOnce},
    {0x1d, 0x5c, Spoken::EscPos, &Typesetter::pagePositionFurther},
    // This command turns the smoothing of large letters on or off. This printer always smooths
    // them.
    {0x1d, 0x62, Spoken::EscPos, &Typesetter::ignore},
    {0x1d, 0x66, Spoken::EscPos, &Typesetter::barcodeSetting},
    {0x1d, 0x68, Spoken::EscPos, &Typesetter::barcodeSetting},
    {0x1d, 0x6b, Spoken::EscPos, &Typesetter::barcode},
    {0x1d, 0x76, Spoken::EscPos, &Typesetter::raster},
    {0x1d, 0x77, Spoken::EscPos, &Typesetter::barcodeSetting},
};

Typesetter::Typesetter(unsigned paperWidth) : paper_(paperWidth), line_(paperWidth) {}

void Typesetter::set(ByteView command) {
  if (displayListens_ && command.size() == 1 && command[0] >= 0x20) {
    record().noteDisplay(command[0]);
  }
  if (isForDisplay(command)) {
    return;
  }
  if (command.size() == 1) {
    character(command[0]);
  } else {
    obey(command);
  }
  if (page_ && page_->isTooLong()) {
    printPage();
    page_.emplace(paper_.width());
    line_.setPaperWidth(paper_.width());
  }
}

void Typesetter::obey(ByteView command) {
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
  if (byte < 0x20) {
    return control(byte);
  }
  if (!addUserCharacter(byte)) {
    add(decoder_.put(byte));
  }
}

void Typesetter::control(std::uint8_t byte) {
  finishText();
  switch (byte) {
    case 0x00:
    case 0x0d:  // lines end with 0a; a 0d before it adds nothing
      return;
    case 0x09:
      return line_.tab(style_.cellWidth());
    case 0x0a:
      return line_.end(target());
    case 0x0c:
      return endPage();
    case 0x18:
      graphics_.cancelNames();
      return page_ ? page_->clear() : void();
    default:
      return paper_.noteSkipped({&byte, 1});
  }
}

bool Typesetter::addUserCharacter(std::uint8_t byte) {
  const Bitmap* drawn = userCharacters_.find(byte);
  if (drawn == nullptr) {
    return false;
  }
  finishText();
  Bitmap dots = enlarged(*drawn, style_.widthFactor, style_.heightFactor);
  dots.grey = style_.grey;
  line_.add(std::move(dots));
  return true;
}

void Typesetter::finishText() {
  add(decoder_.finish());
}

void Typesetter::add(const DecodedText& text) {
  if (!text.missing.empty()) {
    record().noteMissing(text.missing, decoder_.selection());
  }
  if (text.characters.empty()) {
    return;
  }
  TextStyle style = style_;
  if (text.isWide) {
    style.wide = true;
    style.widthFactor = std::max(style.widthFactor, kanji_.width);
    style.heightFactor = std::max(style.heightFactor, kanji_.height);
    style.underline = std::max(style.underline, kanji_.underline);
    style.spacing = static_cast<std::uint8_t>(std::min(kanji_.spacing, 0xffU));
  }
  line_.add(text.characters, style, target());
}

void Typesetter::endLine() {
  finishText();
  line_.endIfBegun(target());
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

}  // namespace quordalvane::simulator
