#include "simulator/Macro.h"

namespace quordalvane::simulator {

void Macro::startOrEnd() {
  isDefining_ = !isDefining_;
  if (isDefining_) {
    commands_.clear();
    size_ = 0;
  }
}

void Macro::keep(ByteView command) {
  if (!isDefining_) {
    return;
  }
  size_ += command.size();
  if (size_ <= mostBytes) {
    commands_.emplace_back(command.begin(), command.end());
  }
}

bool Macro::execute(unsigned times) {
  if (isDefining_) {
    isDefining_ = false;
    commands_.clear();
  }
  if (commands_.empty() || carriedOut_ == mostCommandsOfAJob) {
    return false;
  }
  left_ = times;
  next_ = 0;
  return true;
}

const Bytes* Macro::next() {
  if (left_ == 0 || carriedOut_ == mostCommandsOfAJob) {
    left_ = 0;
    return nullptr;
  }
  const Bytes* command = &commands_[next_];
  ++carriedOut_;
  if (++next_ == commands_.size()) {
    next_ = 0;
    --left_;
  }
  return command;
}

}  // namespace quordalvane::simulator
