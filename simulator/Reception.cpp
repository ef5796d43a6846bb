#include "simulator/Reception.h"

#include <algorithm>

namespace quordalvane::simulator {

void Reception::take(std::span<const std::uint8_t> bytes, bool vanish, const OnPiece& onPiece) {
  for (std::uint8_t byte : bytes) {
    if (!scanner_.insideCommand()) {
      vanishes_ = vanish;
    }
    const bool complete = scanner_.feed(byte);
    undecided_.push_back(byte);
    if (!complete && scanner_.mayConcernTheMachine()) {
      continue;
    }
    const CommandKind kind = complete ? scanner_.kind() : CommandKind::Printing;
    if (actsOnReception(kind) || !vanishes_) {
      passOn(kind, onPiece);
    }
    undecided_.clear();
  }
  passOnForPrinting(onPiece);
}

void Reception::passOn(CommandKind kind, const OnPiece& onPiece) {
  if (kind == CommandKind::Printing) {
    forPrinting_.insert(forPrinting_.end(), undecided_.begin(), undecided_.end());
  } else {
    passOnForPrinting(onPiece);
    onPiece(kind, undecided_);
  }
}

void Reception::passOnForPrinting(const OnPiece& onPiece) {
  if (!forPrinting_.empty()) {
    onPiece(CommandKind::Printing, forPrinting_);
  }
  forPrinting_.clear();
}

std::size_t Reception::actingAtOnce(std::span<const std::uint8_t> bytes) const {
  const bool isInPrintData = scanner_.insideCommand() && undecided_.empty();
  if (isInPrintData) {
    return 0;
  }
  CommandScanner scanner = scanner_.insideCommand() ? scanner_ : CommandScanner();
  const auto other = std::find_if(bytes.begin(), bytes.end(), [&](std::uint8_t byte) {
    return scanner.feed(byte) ? !actsOnReception(scanner.kind()) : !scanner.mayConcernTheMachine();
  });
  return static_cast<std::size_t>(other - bytes.begin());
}

void Reception::restart() {
  scanner_.restart();
  undecided_.clear();
}

}  // namespace quordalvane::simulator
