#include "simulator/PrintQueue.h"

namespace quordalvane::simulator {

void PrintQueue::push(ByteView bytes, Instant now) {
  if (bytes_.empty()) {
    startCountingAt(now);
  }
  bytes_.insert(bytes_.end(), bytes.begin(), bytes.end());
}

std::optional<PrintQueue::Taken> PrintQueue::take(Instant now) {
  if (bytes_.empty()) {
    return std::nullopt;
  }
  const auto done = doneWith(1);
  if (!done || *done > now) {
    return std::nullopt;
  }
  const Taken taken{bytes_.front(), *done};
  bytes_.pop_front();
  ++doneSince_;
  return taken;
}

std::optional<Instant> PrintQueue::doneWith(std::size_t count) const {
  if (!running_) {
    return std::nullopt;
  }
  if (bytesPerSecond_ == 0) {
    return start_;
  }
  constexpr std::uint64_t second = 1'000'000'000;
  const std::uint64_t total = doneSince_ + count;
  // Whole seconds are calculated separately, because otherwise the product would overflow after a
  // long time.
  const std::uint64_t whole = total / bytesPerSecond_;
  const std::uint64_t rest = total % bytesPerSecond_;
  const std::uint64_t nanoseconds =
      whole * second + (rest * second + bytesPerSecond_ - 1) / bytesPerSecond_;
  return start_ + Instant(static_cast<Instant::rep>(nanoseconds));
}

void PrintQueue::run(bool running, std::uint32_t bytesPerSecond, Instant now) {
  if (running == running_ && bytesPerSecond == bytesPerSecond_) {
    return;
  }
  running_ = running;
  bytesPerSecond_ = bytesPerSecond;
  startCountingAt(now);
}

void PrintQueue::startCountingAt(Instant now) {
  start_ = now;
  doneSince_ = 0;
}

}  // namespace quordalvane::simulator
