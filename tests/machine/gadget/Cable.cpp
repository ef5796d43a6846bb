#include "tests/machine/gadget/Cable.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <future>
#include <utility>

namespace quordalvane::machine {

using contract::Bytes;

Cable::~Cable() {
  pull();
  {
    const std::lock_guard lock(mutex_);
    isOver_ = true;
  }
  changed_.notify_all();
  speaker_.join();
}

void Cable::pull() {
  {
    const std::lock_guard lock(mutex_);
    unsaid_.clear();
  }
  gadget_.pull();
}

void Cable::say(Bytes bytes) {
  {
    const std::lock_guard lock(mutex_);
    unsaid_.push_back(std::move(bytes));
  }
  changed_.notify_all();
}

Bytes Cable::take(std::size_t count) {
  constexpr std::chrono::seconds generously(10);
  auto taking = std::async(std::launch::async, [&] { return takeUntilPulled(count); });
  if (taking.wait_for(generously) != std::future_status::ready) {
    pull();
  }
  return taking.get();
}

Bytes Cable::takeUntilPulled(std::size_t count) {
  std::array<std::uint8_t, UsbGadget::packetSize> packet;
  while (taken_.size() < count) {
    const auto length = gadget_.take(packet.data());
    if (length < 0) {
      break;
    }
    taken_.insert(taken_.end(), packet.begin(), packet.begin() + length);
  }
  const auto end = taken_.begin() + static_cast<std::ptrdiff_t>(std::min(count, taken_.size()));
  const Bytes bytes(taken_.begin(), end);
  taken_.erase(taken_.begin(), end);
  return bytes;
}

void Cable::speak() {
  std::unique_lock lock(mutex_);
  while (true) {
    changed_.wait(lock, [this] { return isOver_ || !unsaid_.empty(); });
    if (isOver_) {
      return;
    }
    const Bytes bytes = std::move(unsaid_.front());
    unsaid_.pop_front();
    lock.unlock();
    gadget_.say(bytes);
    lock.lock();
  }
}

}  // namespace quordalvane::machine
