#include "backends/posix/Link.h"

#include <poll.h>

#include <algorithm>
#include <cerrno>
#include <ctime>
#include <utility>

#include "backends/posix/Linger.h"

namespace quordalvane::posix {
namespace {

// Returns the current tick. If a check shows that the input is empty, the input counts as empty
// until the next tick, which saves system calls. A tick is long enough for the checks around one
// transfer, and too short to be noticed.
Tick currentTick() {
  timespec now{};
  ::clock_gettime(CLOCK_MONOTONIC_COARSE, &now);
  return std::chrono::seconds(now.tv_sec) + Tick(now.tv_nsec);
}

// How long closing a connection may wait for the device. In this time even a slow device takes the
// rest of a receipt. A longer time would delay the caller.
constexpr std::chrono::seconds lingerLimit{2};

// The system is asked at this interval whether the other side still answers. Each such question
// costs a little time.
constexpr std::chrono::seconds silenceInterval{1};

// If the system took all bytes of a write of at most this length, the link is assumed to have
// space. The system's buffers hold many commands, and a query for the space costs as much as
// sending a command. A longer write may have filled the buffers.
constexpr std::size_t longestCommand = 4096;

bool wouldBlock(int error) {
  return error == EAGAIN;
}

}  // namespace

Link::Link(Descriptor descriptor, std::chrono::milliseconds silenceLimit)
    : silenceLimit_(silenceLimit),
      descriptor_(std::make_shared<const Descriptor>(std::move(descriptor))) {}

void Link::abandon() {
  const std::lock_guard lock(mutex_);
  abandoned_ = true;
}

void Link::release() {
  std::unique_lock lock(mutex_);
  const auto descriptor = std::exchange(descriptor_, nullptr);
  if (!descriptor) {
    return;
  }
  next_ = end_;  // drops the unread bytes
  const bool isAwaited = !abandoned_ && !outputBroken_;
  lock.unlock();
  const SteadyTime now = SteadyClock::now();
  linger(*descriptor, isAwaited ? now + lingerLimit : now);
  descriptor->shutdown();
}

bool Link::isLost() {
  const std::lock_guard lock(mutex_);
  look();
  return descriptor_ && ended_;
}

void Link::noticeLoss() {
  const std::lock_guard lock(mutex_);
  if (!descriptor_ || beingWaited_) {
    return;  // the thread that waits for input will itself notice the loss
  }
  if (descriptor_->pollUntil(POLLRDHUP, SteadyTime{}) != 0) {
    next_ = end_;
    ended_ = true;
  }
}

bool Link::hasBytes() {
  const std::lock_guard lock(mutex_);
  look();
  return unread() > 0;
}

std::int64_t Link::read(std::uint8_t* buffer, std::size_t maxLength) {
  const std::lock_guard lock(mutex_);
  if (!descriptor_) {
    return -1;
  }
  look();
  const std::size_t count = std::min(maxLength, unread());
  std::copy_n(ahead_.data() + next_, count, buffer);
  next_ += count;
  noteAnswered();
  return static_cast<std::int64_t>(count);
}

bool Link::expectsBytes() {
  const std::lock_guard lock(mutex_);
  return expectation_.replyMayCome();
}

void Link::waitForBytes(double seconds) {
  std::unique_lock lock(mutex_);
  if (unread() > 0 || ended_ || !descriptor_) {
    return;
  }
  const SteadyTime deadline = deadlineIn(seconds);
  const auto descriptor = descriptor_;
  beingWaited_ = true;
  lock.unlock();
  const std::ptrdiff_t count = descriptor->receiveUntil(ahead_.data(), ahead_.size(), deadline);
  const int error = errno;
  lock.lock();
  beingWaited_ = false;
  if (!descriptor_) {
    return;
  }
  if (count == -1 && wouldBlock(error) && seconds > 0 && hasPassed(deadline)) {
    expectation_.waitedInVain();
  }
  noteReceived(count, error);
}

void Link::setMayBeAnswered(bool mayBeAnswered) {
  const std::lock_guard lock(mutex_);
  expectation_.setMayBeAnswered(mayBeAnswered);
}

bool Link::hasSpace() {
  const std::lock_guard lock(mutex_);
  return hasSpaceLocked();
}

bool Link::hasSpaceLocked() {
  if (!descriptor_) {
    return false;
  }
  if (outputBroken_) {
    return true;  // a write would fail at once, so no caller need wait for space
  }
  if (mayBeFull_ && descriptor_->pollUntil(POLLOUT, SteadyTime{}) != 0) {
    mayBeFull_ = false;
  }
  return !mayBeFull_;
}

std::int64_t Link::write(const std::uint8_t* bytes, std::size_t length) {
  const std::lock_guard lock(mutex_);
  if (!descriptor_ || outputBroken_) {
    return -1;
  }
  if (length == 0) {
    return 0;
  }
  const std::ptrdiff_t count = descriptor_->send(bytes, length);
  if (count == -1 && !wouldBlock(errno)) {
    outputBroken_ = true;
    dry_ = false;  // the next call of `look` then checks whether bytes are left to read
    return -1;
  }
  mayBeFull_ = length > longestCommand || count < static_cast<std::ptrdiff_t>(length);
  if (count <= 0) {
    return 0;
  }
  expectation_.wrote();
  cameSinceWrite_ = cameSinceWrite_ && !expectation_.mayBeAnswered();
  return count;
}

void Link::waitForSpace(double seconds) {
  const SteadyTime deadline = deadlineIn(seconds);
  std::unique_lock lock(mutex_);
  short awaited = POLLOUT | POLLRDHUP;
  while (descriptor_ && !outputBroken_ && mayBeFull_ && !ended_) {
    const auto descriptor = descriptor_;
    lock.unlock();
    const short events = descriptor->pollUntil(awaited, deadline);
    lock.lock();
    if (events != POLLRDHUP) {
      return;
    }
    // The other side has ended its output. If all of this output was read, `look` notices that the
    // link has ended, and the wait ends. Otherwise the wait continues, because the other side may
    // still take bytes.
    dry_ = false;
    look();
    awaited = POLLOUT;
  }
}

std::string Link::portState() {
  const std::lock_guard lock(mutex_);
  return descriptor_ ? descriptor_->portState() : "";
}

// Checks whether there is input. Does nothing if this is known already or a waiting thread will
// find it out.
void Link::look() {
  const bool known = unread() > 0 || ended_ || !descriptor_ || beingWaited_;
  if (known || (dry_ && currentTick() == dryAt_)) {
    return;
  }
  receive();
}

void Link::receive() {
  const std::ptrdiff_t count = descriptor_->receive(ahead_.data(), ahead_.size());
  noteReceived(count, errno);
}

// Records the result of a `receive`; before this `receive`, `ahead_` had no unread bytes.
void Link::noteReceived(std::ptrdiff_t count, int error) {
  const bool nothingYet = count == -1 && wouldBlock(error);
  if (nothingYet && hasFallenSilent()) {
    outputBroken_ = true;
  }
  if (count > 0) {
    next_ = 0;
    end_ = static_cast<std::size_t>(count);
    cameSinceWrite_ = true;
    dry_ = false;
    if (end_ < ahead_.size() && descriptor_->shortReceiveEmpties()) {
      noteDry();
    }
  } else if (nothingYet && !outputBroken_) {
    noteDry();
    noteAnswered();
  } else {
    ended_ = true;
  }
}

// Returns true if the other side has vanished, without closing the connection, while bytes were
// under way to it. The system is asked only from time to time; between these times the result is
// false.
bool Link::hasFallenSilent() {
  const Tick now = currentTick();
  if (now < nextSilenceLook_) {
    return false;
  }
  nextSilenceLook_ = now + silenceInterval;
  return descriptor_->silence() > silenceLimit_;
}

void Link::noteDry() {
  dry_ = true;
  dryAt_ = currentTick();
}

// Records a reply if bytes arrived after the last write and the reader took all of these bytes.
// Bytes that arrived before a write cannot be the reply to the write, even if the reader takes them
// later.
void Link::noteAnswered() {
  if (unread() == 0 && dry_ && cameSinceWrite_) {
    cameSinceWrite_ = false;
    expectation_.ranDryAfterBytes();
  }
}

}  // namespace quordalvane::posix
