#include "simulator/Printing.h"

#include <utility>

namespace quordalvane::simulator {

CommandKind Printing::pass(std::uint8_t byte) {
  const bool complete = scanner_.feed(byte);
  undecided_.push_back(byte);
  if (!complete && scanner_.mayConcernTheMachine())
    return CommandKind::Printing;
  const CommandKind kind = complete ? scanner_.kind() : CommandKind::Printing;
  if (isEtb(kind)) {
    undecided_.clear();
    typesetter_.endJob();
    return kind;
  }
  printed_.insert(printed_.end(), undecided_.begin(), undecided_.end());
  undecided_.clear();
  if (complete)
    typesetter_.set(scanner_.bytes());
  return CommandKind::Printing;
}

void Printing::leaveUnfinishedCommand() {
  scanner_.restart();
  undecided_.clear();
}

Paper Printing::tearOff() {
  printed_.clear();
  return typesetter_.tearOff();
}

}  // namespace quordalvane::simulator
