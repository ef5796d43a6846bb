#include "job/EscPosAnswers.h"

#include <algorithm>
#include <limits>

namespace quordalvane {
namespace {

constexpr std::size_t odd = std::numeric_limits<std::size_t>::max();
constexpr std::size_t more = 0;
constexpr std::size_t mostIds = 16;
constexpr std::size_t longestText = 80;

// The form of a printer's report of a mark. The count in the report may have any value.
constexpr std::uint8_t reportForm[] = {0x1b, 0x1d, 0x03, 0x01, 0x00, 0x00, 0, 0x00};
constexpr std::size_t countPlace = 6;

bool isFlowControl(std::uint8_t byte) {
  return byte == 0x11 || byte == 0x13;
}

bool isInOrderStatus(std::uint8_t byte) {
  return (byte & 0x90) == 0x00;
}

bool startsUnaskedStatus(std::uint8_t byte) {
  return (byte & 0x93) == 0x10;
}

bool isIdCharacter(std::uint8_t byte) {
  return byte >= 0x20 && byte <= 0x7e;
}

}  // namespace

bool EscPosAnswers::hasNamed(const JobId& id) const {
  return std::find(ids_.begin(), ids_.end(), id) != ids_.end();
}

void EscPosAnswers::feed(ByteView bytes) {
  for (const std::uint8_t byte : bytes) {
    // The count in a report may be equal to a flow-control byte.
    const bool isCount = bytes_.size() == countPlace && bytes_.front() == reportForm[0];
    if (isFlowControl(byte) && !isCount) {
      continue;
    }
    bytes_.push_back(byte);
    while (!bytes_.empty()) {
      const std::size_t taken = take();
      if (taken == more) {
        break;
      }
      bytes_.erase(bytes_.begin(), bytes_.begin() + static_cast<std::ptrdiff_t>(taken));
    }
  }
}

/// A byte that cannot begin an answer is dropped, and the bytes after it are kept.
std::size_t EscPosAnswers::take() {
  const std::size_t taken = takeAnswer();
  isAnyOdd_ = isAnyOdd_ || taken == odd;
  return taken == odd ? 1 : taken;
}

std::size_t EscPosAnswers::takeAnswer() {
  const std::uint8_t first = bytes_.front();
  if (isRealTimeStatus(first)) {
    realTimeStatus_ = first;
    ++realTimeCount_;
    return 1;
  }
  if (isInOrderStatus(first)) {
    ++inOrderCount_;
    return 1;
  }
  if (startsUnaskedStatus(first)) {
    return takeUnasked();
  }
  switch (first) {
    case 0x37:
      return takeProcessId();
    case 0x1b:
      return takeReport();
    case 0x5f:
      return takeText();
    default:
      return odd;
  }
}

std::size_t EscPosAnswers::takeUnasked() const {
  constexpr std::size_t size = 4;
  const bool isOdd = !std::all_of(bytes_.begin() + 1, bytes_.end(), isInOrderStatus);
  return isOdd ? odd : bytes_.size() == size ? size : more;
}

std::size_t EscPosAnswers::takeProcessId() {
  constexpr std::size_t size = 7;
  constexpr std::uint8_t idHead = 0x22;
  constexpr std::uint8_t droppedHead = 0x25;
  const std::size_t count = bytes_.size();
  if (count == 1) {
    return more;
  }
  if (bytes_[1] == droppedHead) {
    return count < 3 ? more : bytes_[2] == 0 ? 3 : odd;
  }
  if (bytes_[1] != idHead ||
      !std::all_of(bytes_.begin() + 2,
                   bytes_.begin() + static_cast<std::ptrdiff_t>(std::min<std::size_t>(count, 6)),
                   isIdCharacter)) {
    return odd;
  }
  if (count < size) {
    return more;
  }
  if (bytes_[6] != 0) {
    return odd;
  }
  if (ids_.size() == mostIds) {
    ids_.erase(ids_.begin());
  }
  ids_.push_back({bytes_[2], bytes_[3], bytes_[4], bytes_[5]});
  return size;
}

std::size_t EscPosAnswers::takeReport() {
  for (std::size_t i = 1; i < bytes_.size(); ++i) {
    if (i != countPlace && bytes_[i] != reportForm[i]) {
      return odd;
    }
  }
  if (bytes_.size() < std::size(reportForm)) {
    return more;
  }
  report_ = bytes_[countPlace];
  return std::size(reportForm);
}

std::size_t EscPosAnswers::takeText() const {
  if (bytes_.back() == 0) {
    return bytes_.size();
  }
  return bytes_.size() <= longestText && isIdCharacter(bytes_.back()) ? more : odd;
}

}  // namespace quordalvane
