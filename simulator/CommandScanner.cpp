#include "simulator/CommandScanner.h"

#include <algorithm>
#include <array>

#include "simulator/CommandLengths.h"

namespace quordalvane::simulator {
namespace {

// Two metres of the widest paper, all of it image.
constexpr std::size_t longestKept = std::size_t{2} * 1024 * 1024;

constexpr int any = -1;

struct Pattern {
  CommandKind kind;
  std::size_t length;
  std::array<int, 6> bytes;
};

constexpr Pattern patterns[] = {
    {CommandKind::PrepareStatus, 4, {0x1b, 0x2a, 0x72, 0x42}},
    {CommandKind::StatusRequest, 3, {0x1b, 0x06, 0x01}},
    {CommandKind::RealTimeStatus, 3, {0x10, 0x04, 0x01}},
    {CommandKind::RealTimeStatus, 3, {0x10, 0x04, 0x02}},
    {CommandKind::RealTimeStatus, 3, {0x10, 0x04, 0x04}},
    {CommandKind::Firmware, 5, {0x1b, 0x23, 0x2a, 0x0a, 0x00}},
    {CommandKind::FirmwareEscPos, 3, {0x1d, 0x49, 0x41}},
    {CommandKind::DipSwitches, 6, {0x1b, 0x23, 0x2c, 0x31, 0x0a, 0x00}},
    {CommandKind::DipSwitches, 6, {0x1b, 0x23, 0x2c, 0x32, 0x0a, 0x00}},
    {CommandKind::CounterReset, 4, {0x1b, 0x1e, 0x45, 0x00}},
    {CommandKind::CounterReset, 6, {0x1b, 0x1d, 0x03, 0x02, 0x00, 0x00}},
    {CommandKind::DataCancel, 6, {0x1b, 0x1d, 0x03, 0x03, 0x00, 0x00}},
    {CommandKind::DataCancelEnd, 6, {0x1b, 0x1d, 0x03, 0x04, 0x00, 0x00}},
    {CommandKind::DataTimeout, 6, {0x1b, 0x1d, 0x03, 0x05, 0x01, any}},
    {CommandKind::Etb, 1, {0x17}},
    {CommandKind::ReportingEtb, 6, {0x1b, 0x1d, 0x03, 0x01, 0x00, 0x00}},
};

// Every pattern begins with a control character, and most of a job is text.
bool isText(const std::vector<std::uint8_t>& bytes) {
  return bytes[0] >= 0x20;
}

bool beginsLike(const Pattern& pattern, const std::vector<std::uint8_t>& bytes) {
  return std::equal(bytes.begin(), bytes.end(), pattern.bytes.begin(),
                    [](std::uint8_t byte, int wanted) { return wanted == any || byte == wanted; });
}

}  // namespace

bool actsOnReception(CommandKind kind) {
  return kind != CommandKind::Printing && !isEtb(kind);
}

bool isEtb(CommandKind kind) {
  return kind == CommandKind::Etb || kind == CommandKind::ReportingEtb;
}

bool CommandScanner::feed(std::uint8_t byte) {
  if (length_ >= needed_) {
    restart();
  }
  ++length_;
  if (bytes_.size() < longestKept) {
    bytes_.push_back(byte);
  }
  if (length_ < needed_) {
    return false;
  }
  if (isText(bytes_)) {
    return true;
  }
  needed_ = leastCommandLength(bytes_);
  return length_ >= needed_;
}

CommandKind CommandScanner::kind() const {
  if (isText(bytes_)) {
    return CommandKind::Printing;
  }
  for (const Pattern& pattern : patterns) {
    if (length_ == pattern.length && beginsLike(pattern, bytes_)) {
      return pattern.kind;
    }
  }
  return CommandKind::Printing;
}

bool CommandScanner::mayConcernTheMachine() const {
  return !isText(bytes_) &&
         std::any_of(std::begin(patterns), std::end(patterns), [&](const Pattern& pattern) {
           return length_ < pattern.length && beginsLike(pattern, bytes_);
         });
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
