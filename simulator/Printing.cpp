#include "simulator/Printing.h"

namespace quordalvane::simulator {

void Printing::pass(std::uint8_t byte, std::uint64_t offset) {
  if (!scanner_.insideCommand()) {
    begin_ = offset;
  }
  if (!scanner_.feed(byte)) {
    return;
  }
  if (!scanner_.isKnown()) {
    record().noteUnknown(begin_, scanner_.bytes());
  }
  typesetter_.set(scanner_.bytes());
}

void Printing::leaveUnfinishedCommand() {
  if (scanner_.insideCommand()) {
    record().noteCutOff(begin_, scanner_.bytes());
  }
  scanner_.restart();
}

}  // namespace quordalvane::simulator
