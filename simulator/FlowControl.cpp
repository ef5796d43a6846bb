#include "simulator/FlowControl.h"

#include <algorithm>

namespace quordalvane::simulator {
namespace {

// After a request to pause, a host may still send some bytes. A part of the buffer is kept free for
// these bytes.
std::size_t nearlyFull(std::size_t size) {
  return std::min<std::size_t>(size / 4, 256);
}

}  // namespace

std::size_t FlowControl::spaceAgain(std::size_t size) {
  return std::min<std::size_t>(size / 2, 512);
}

std::optional<std::uint8_t> FlowControl::follow(std::size_t free, std::size_t size) {
  const bool isDue = isPaused_ ? free >= spaceAgain(size) : free <= nearlyFull(size);
  if (!isDue) {
    return std::nullopt;
  }
  isPaused_ = !isPaused_;
  return isPaused_ ? pause : goOn;
}

}  // namespace quordalvane::simulator
