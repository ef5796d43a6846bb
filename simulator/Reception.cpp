#include "simulator/Reception.h"

namespace quordalvane::simulator {

void Reception::take(std::span<const std::uint8_t> bytes, const OnPiece& onPiece) {
  for (std::uint8_t byte : bytes) {
    const bool complete = scanner_.feed(byte);
    undecided_.push_back(byte);
    if (!complete && scanner_.mayConcernTheMachine())
      continue;
    const CommandKind kind = complete ? scanner_.kind() : CommandKind::Printing;
    if (kind == CommandKind::Printing) {
      forPrinting_.insert(forPrinting_.end(), undecided_.begin(), undecided_.end());
    } else {
      passOnForPrinting(onPiece);
      onPiece(kind, undecided_);
    }
    undecided_.clear();
  }
  passOnForPrinting(onPiece);
}

void Reception::passOnForPrinting(const OnPiece& onPiece) {
  if (!forPrinting_.empty())
    onPiece(CommandKind::Printing, forPrinting_);
  forPrinting_.clear();
}

bool Reception::restart() {
  const bool passedOnInPart = scanner_.insideCommand() && undecided_.empty();
  scanner_.restart();
  undecided_.clear();
  return passedOnInPart;
}

}  // namespace quordalvane::simulator
