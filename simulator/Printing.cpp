#include "simulator/Printing.h"

namespace quordalvane::simulator {
namespace {

bool startsOrEndsMacro(ByteView command) {
  return command.size() == 2 && command[0] == 0x1d && command[1] == 0x3a;
}

bool executesMacro(ByteView command) {
  return command.size() == 5 && command[0] == 0x1d && command[1] == 0x5e;
}

}  // namespace

void Printing::setDialect(const Dialect& dialect) {
  dialect_ = dialect;
  dialect_.display = typesetter_.isDisplayAlone();
  scanner_.setDialect(dialect_);
}

bool Printing::pass(std::uint8_t byte, std::uint64_t offset) {
  if (!scanner_.insideCommand()) {
    begin_ = offset;
  }
  if (!scanner_.feed(byte)) {
    return false;
  }
  const bool isLacked = lacked_.has(scanner_.bytes());
  if (isLacked || !scanner_.isKnown()) {
    record().noteUnknown(begin_, scanner_.bytes());
  }
  if (!isLacked) {
    carryOut(scanner_.bytes());
  }
  return true;
}

void Printing::carryOut(ByteView command) {
  if (executesMacro(command)) {
    const bool isExecuted = macro_.execute(command[2]);
    return isExecuted ? void() : set(command);
  }
  if (startsOrEndsMacro(command)) {
    macro_.startOrEnd();
  } else {
    macro_.keep(command);
  }
  set(command);
}

bool Printing::goOn() {
  const Bytes* command = macro_.next();
  if (command != nullptr) {
    set(*command);
  }
  return command != nullptr;
}

void Printing::set(ByteView command) {
  typesetter_.set(command);
  if (typesetter_.isDisplayAlone() != dialect_.display) {
    setDialect(dialect_);
  }
}

void Printing::leaveUnfinishedCommand() {
  if (scanner_.insideCommand()) {
    record().noteCutOff(begin_, scanner_.bytes());
  }
  scanner_.restart();
}

Paper Printing::tearOff() {
  macro_.endJob();
  return typesetter_.tearOff();
}

Paper Printing::tearOffFinishedLines() {
  macro_.stop();
  return typesetter_.tearOffFinishedLines();
}

}  // namespace quordalvane::simulator
