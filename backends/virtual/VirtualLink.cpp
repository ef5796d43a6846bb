#include "backends/virtual/VirtualLink.h"

#include <algorithm>
#include <chrono>
#include <utility>

namespace quordalvane::virtuals {
namespace {

using simulator::Instant;

/// Returns the microseconds from `now` to `then`, rounded up, so that a wait of this length never
/// ends before the event.
std::uint64_t microsecondsUntil(Instant now, Instant then) {
  return static_cast<std::uint64_t>(
      std::chrono::ceil<std::chrono::microseconds>(then - now).count());
}

}  // namespace

VirtualLink::VirtualLink(std::shared_ptr<PrinterInside> inside, Clock& clock)
    : inside_(std::move(inside)), clock_(clock) {
  const std::lock_guard lock(inside_->mutex);
  link_ = std::make_unique<simulator::PrinterLink>(*inside_->printer, clock_.monotonic(),
                                                   inside_->faults);
}

VirtualLink::~VirtualLink() {
  close();
}

void VirtualLink::close() {
  const std::lock_guard lock(inside_->mutex);
  link_.reset();
}

bool VirtualLink::isLost() {
  const std::lock_guard lock(inside_->mutex);
  return link_ != nullptr && (lossNoticed_ || !link_->connected(clock_.monotonic()));
}

void VirtualLink::noticeLoss() {
  const std::lock_guard lock(inside_->mutex);
  lossNoticed_ = link_ != nullptr && link_->dropped(clock_.monotonic());
}

bool VirtualLink::hasSpace() {
  const std::lock_guard lock(inside_->mutex);
  return isReady(Awaited::Space);
}

bool VirtualLink::hasBytes() {
  const std::lock_guard lock(inside_->mutex);
  return isReady(Awaited::Bytes);
}

bool VirtualLink::expectsBytes() {
  const std::lock_guard lock(inside_->mutex);
  return expectation_.replyMayCome();
}

void VirtualLink::setMayBeAnswered(bool mayBeAnswered) {
  const std::lock_guard lock(inside_->mutex);
  expectation_.setMayBeAnswered(mayBeAnswered);
}

bool VirtualLink::isReady(Awaited awaited) {
  if (link_ == nullptr) {
    return false;
  }
  const Instant now = clock_.monotonic();
  if (awaited == Awaited::Bytes) {
    return link_->available(now) > 0;
  }
  return link_->dropped(now) ||
         link_->space(now) > 0;  // on a dropped link a write does not wait but fails at once
}

std::int64_t VirtualLink::write(std::span<const std::uint8_t> bytes) {
  const std::lock_guard lock(inside_->mutex);
  const Instant now = clock_.monotonic();
  if (link_ == nullptr || link_->dropped(now)) {
    return -1;
  }
  const std::size_t taken = link_->write(bytes, now);
  if (taken > 0) {
    expectation_.wrote();
  }
  return static_cast<std::int64_t>(taken);
}

std::int64_t VirtualLink::read(std::span<std::uint8_t> bytes) {
  const std::lock_guard lock(inside_->mutex);
  if (link_ == nullptr) {
    return -1;
  }
  const Instant now = clock_.monotonic();
  const std::size_t count = link_->read(bytes, now);
  if (count > 0 && link_->available(now) == 0) {
    expectation_.ranDryAfterBytes();
  }
  return static_cast<std::int64_t>(count);
}

void VirtualLink::waitForBytes(double seconds) {
  wait(Awaited::Bytes, seconds);
}

void VirtualLink::waitForSpace(double seconds) {
  wait(Awaited::Space, seconds);
}

/// Sleeps from one event of the printer to the next. The printer is locked only between the sleeps,
/// so that other threads can use it during a sleep.
void VirtualLink::wait(Awaited awaited, double seconds) {
  const Instant deadline =
      clock_.monotonic() + std::chrono::round<Instant>(std::chrono::duration<double>(seconds));
  while (true) {
    const Instant now = clock_.monotonic();
    Instant until = deadline;
    {
      const std::lock_guard lock(inside_->mutex);
      if (link_ == nullptr || link_->dropped(now) || isReady(awaited)) {
        return;
      }
      if (now >= deadline) {
        if (awaited == Awaited::Bytes) {
          expectation_.waitedInVain();
        }
        return;
      }
      until = std::min(deadline, link_->nextEvent(now).value_or(deadline));
    }
    clock_.usleep(microsecondsUntil(now, until));
  }
}

}  // namespace quordalvane::virtuals
