#include "job/OwedAnswers.h"

#include "iphone-IOPort/PortC.h"
#include "job/StatusBlock.h"

namespace quordalvane {
namespace {

constexpr std::uint32_t lineModeRequest = 0x1b0601;
constexpr std::uint32_t realTimeRequest = 0x1004;  // a third byte, the number of the query, follows

}  // namespace

void OwedAnswers::written(ByteView bytes) {
  for (const std::uint8_t byte : bytes) {
    lastWritten_ = (lastWritten_ << 8U | byte) & 0xffffff;
    owed_ += isRequestEnd() ? 1 : 0;
  }
}

bool OwedAnswers::isRequestEnd() const {
  return isLineMode_ ? lastWritten_ == lineModeRequest : lastWritten_ >> 8U == realTimeRequest;
}

void OwedAnswers::read(ByteView bytes) {
  for (const std::uint8_t byte : bytes) {
    isLineMode_ ? readLineMode(byte) : readESCPOS(byte);
  }
}

void OwedAnswers::readLineMode(std::uint8_t byte) {
  if (block_.empty() && !startsStatusBlock(byte)) {
    isAnyOdd_ = true;
    return;
  }
  block_.push_back(byte);
  if (static_cast<std::int32_t>(block_.size()) == CalculateStatusLength(block_.front())) {
    take(block_);
    block_.clear();
  }
}

void OwedAnswers::readESCPOS(std::uint8_t byte) {
  const std::uint64_t before = escPos_.realTimeCount();
  escPos_.feed({&byte, 1});
  if (escPos_.realTimeCount() > before) {
    take({*escPos_.lastRealTimeStatus()});
  }
  isAnyOdd_ = escPos_.isAnyOdd();
}

void OwedAnswers::take(const std::vector<std::uint8_t>& answer) {
  --owed_;
  last_ = answer;
}

}  // namespace quordalvane
