// The commands for the style and the character set of text.

#include "simulator/Typesetter.h"

namespace quordalvane::simulator {

void Typesetter::initialise(ByteView) {
  line_.endIfBegun(target());
  page_.reset();
  line_ = LineBuilder(paper_.width());
  style_ = {};
  kanji_ = {};
  decoder_.reset();
  graphics_.initialise();
  symbols_ = {};
  userCharacters_ = {};
}

void Typesetter::printMode(ByteView command) {
  const unsigned bits = command[2];
  style_.smallFont = (bits & 0x01U) != 0;
  style_.bold = (bits & 0x08U) != 0;
  style_.heightFactor = bits & 0x10U ? 2 : 1;
  style_.widthFactor = bits & 0x20U ? 2 : 1;
  style_.underline = bits & 0x80U ? 1 : 0;
}

void Typesetter::kanjiMode(ByteView command) {
  kanji_.width = (command[2] & 0x04U) != 0 ? 2 : 1;
  kanji_.height = (command[2] & 0x08U) != 0 ? 2 : 1;
  kanji_.underline = (command[2] & 0x80U) != 0 ? 1 : 0;
}

void Typesetter::kanjiUnderline(ByteView command) {
  const unsigned thickness = command[2] & 0x0fU;  // 0 to 2, as a number or as an ASCII digit
  if (thickness <= 2) {
    kanji_.underline = static_cast<std::uint8_t>(thickness);
  }
}

// The command sets one spacing to the left of each character and one to the right. This printer
// puts both to the right.
void Typesetter::kanjiSpacing(ByteView command) {
  kanji_.spacing = unsigned{command[2]} + command[3];
}

void Typesetter::kanjiDoubled(ByteView command) {
  kanji_.width = (command[2] & 1U) != 0 ? 2 : 1;
  kanji_.height = kanji_.width;
}

void Typesetter::bold(ByteView command) {
  style_.bold = (command[2] & 1U) != 0;
}

void Typesetter::underline(ByteView command) {
  const unsigned thickness = command[2] & 0x0fU;  // 0 to 2, as a number or as an ASCII digit
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

void Typesetter::characterSpacing(ByteView command) {
  style_.spacing = command[2];
}

void Typesetter::colour(ByteView command) {
  style_.grey = (command[2] & 1U) != 0;
}

void Typesetter::rotation(ByteView command) {
  style_.rotated = (command[2] & 0x0fU) != 0;
}

void Typesetter::upsideDown(ByteView command) {
  line_.setUpsideDown((command[2] & 1U) != 0);
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
  const bool on = command[1] == 0x26;
  // A printer without multi-byte text ignores the command that turns such text off.
  if (!decoder_.setMultiByte(on) && on) {
    paper_.noteSkipped(command);
  }
}

void Typesetter::multiByteCode(ByteView command) {
  if (!decoder_.selectMultiByteCode(command[2]) && (command[2] & 0x0fU) != 0) {
    paper_.noteSkipped(command);
  }
}

// The command is 1c 28 43 02 00 30 m: m is 1 for the code page, 2 for UTF-8. The command for the
// font, 1c 28 41, has no effect.
void Typesetter::characterEncoding(ByteView command) {
  constexpr std::uint8_t font = 0x41;
  if (command[2] == font) {
    return;
  }
  const bool selects = command.size() == 7 && command[2] == 0x43 && command[5] == 0x30;
  if (!selects || !decoder_.setUtf8((command[6] & 0x0fU) == 2)) {
    paper_.noteSkipped(command);
  }
}

void Typesetter::userCharacters(ByteView command) {
  userCharacters_.define(command);
}

void Typesetter::userCharactersOn(ByteView command) {
  userCharacters_.turn((command[2] & 1U) != 0);
}

void Typesetter::eraseUserCharacter(ByteView command) {
  userCharacters_.erase(command[2]);
}

}  // namespace quordalvane::simulator
