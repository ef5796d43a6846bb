#include "simulator/Reception.h"

#include <algorithm>

namespace quordalvane::simulator {

void Reception::take(ByteView bytes, bool vanish, const OnPiece& onPiece) {
  for (std::uint8_t byte : bytes) {
    if (!scanner_.insideCommand()) {
      vanishes_ = vanish;
    }
    const bool complete = scanner_.feed(byte);
    undecided_.push_back(byte);
    if (!complete && scanner_.mayConcernTheMachine()) {
      continue;
    }
    const MachineCommand command = complete ? completeCommand(scanner_) : MachineCommand::Printing;
    if (actsOnReception(command) || !vanishes_) {
      passOn(command, onPiece);
    }
    undecided_.clear();
  }
  passOnForPrinting(onPiece);
}

MachineCommand Reception::completeCommand(const CommandScanner& scanner) const {
  const MachineCommand command = scanner.command();
  const bool isLacked = command != MachineCommand::Printing && lacked_.has(scanner.bytes());
  return isLacked ? MachineCommand::Printing : command;
}

void Reception::passOn(MachineCommand command, const OnPiece& onPiece) {
  if (command == MachineCommand::Printing) {
    forPrinting_.insert(forPrinting_.end(), undecided_.begin(), undecided_.end());
  } else {
    passOnForPrinting(onPiece);
    onPiece(command, undecided_);
  }
}

void Reception::passOnForPrinting(const OnPiece& onPiece) {
  if (!forPrinting_.empty()) {
    onPiece(MachineCommand::Printing, forPrinting_);
  }
  forPrinting_.clear();
}

std::size_t Reception::actingAtOnce(ByteView bytes) const {
  const bool isInPrintData = scanner_.insideCommand() && undecided_.empty();
  if (isInPrintData) {
    return 0;
  }
  CommandScanner scanner = scanner_.insideCommand() ? scanner_ : CommandScanner();
  const auto other = std::find_if(bytes.begin(), bytes.end(), [&](std::uint8_t byte) {
    return scanner.feed(byte) ? !actsOnReception(completeCommand(scanner))
                              : !scanner.mayConcernTheMachine();
  });
  return static_cast<std::size_t>(other - bytes.begin());
}

void Reception::restart() {
  scanner_.restart();
  undecided_.clear();
}

}  // namespace quordalvane::simulator
