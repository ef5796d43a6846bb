#include "simulator/CommandScanner.h"

#include "simulator/CommandLengths.h"

namespace quordalvane::simulator {
namespace {

// The size in bytes of an image that covers two metres of the widest paper.
constexpr std::size_t longestKept = std::size_t{2} * 1024 * 1024;

}  // namespace

bool CommandScanner::feed(std::uint8_t byte) {
  if (length_ >= needed_) {
    restart();
  }
  if (length_ == 0) {
    dialect_ = nextDialect_;
  }
  ++length_;
  if (bytes_.size() < longestKept) {
    bytes_.push_back(byte);
  }
  if (length_ < needed_) {
    return false;
  }
  needed_ = leastCommandLength(bytes_, dialect_);
  return length_ >= needed_;
}

MachineCommand CommandScanner::command() const {
  return machineCommand(bytes_, dialect_);
}

bool CommandScanner::isKnown() const {
  return isKnownCommand(bytes_, dialect_);
}

bool CommandScanner::mayConcernTheMachine() const {
  return mayBecomeMachineCommand(bytes_, dialect_);
}

void CommandScanner::restart() {
  bytes_.clear();
  if (bytes_.capacity() > longestKept / 16) {
    bytes_.shrink_to_fit();
  }
  length_ = 0;
  needed_ = 1;
}

}  // namespace quordalvane::simulator
