#include "tools/quorport/simulate/HostConnection.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <span>
#include <utility>

namespace quordalvane::tool {
namespace {

using namespace std::chrono_literals;
using simulator::Instant;

// How many bytes are read from a host while the printer has no space. This is enough for requests,
// which are short.
constexpr std::size_t reserve = 64;

constexpr std::size_t pieceSize = 4096;

// The largest number of bytes that are read ahead. The unread bytes of a host that has left are in
// the system's buffer, which is smaller than this limit. So this class can read all of them and
// then notices that the host has left.
constexpr std::size_t mostReadAhead = std::size_t{16} << 20U;

constexpr std::size_t mostOutgoing = std::size_t{64} << 10U;

// How long the host may take to read the printer's last bytes after the printer has dropped the
// link. Bytes that the host has not read by then are lost.
constexpr Instant settlingTime = 1s;

// The pause between two checks whether the host has read the printer's last bytes.
constexpr Instant settlingPause = 10ms;

}  // namespace

HostConnection::HostConnection(std::unique_ptr<Line> line, simulator::PrinterLink& link)
    : line_(std::move(line)), link_(link) {}

void HostConnection::await(std::vector<pollfd>& awaited) const {
  const int wantsInput = wantsBytes() ? POLLIN : 0;
  const int wantsSpace = outgoing_.empty() ? 0 : POLLOUT;
  const int wantsEnd = hostEnded_ ? 0 : POLLRDHUP;
  const auto events = static_cast<short>(wantsInput | wantsSpace | wantsEnd);
  // After the host has left, the line is not passed to `poll`, which would always return
  // immediately.
  if (events != 0 && !wasDropped()) {
    awaited.push_back({.fd = line_->descriptor().number(), .events = events, .revents = 0});
  }
}

std::optional<Instant> HostConnection::nextEvent(Instant now) const {
  return wasDropped() ? now + settlingPause : link_.nextEvent(now);
}

void HostConnection::work(Instant now) {
  if (wasDropped()) {
    over_ = over_ || line_->hasSettled() || now >= *lastSettling_;
    return;
  }
  noticeHangUp();
  takeFromHost(now);
  giveToHost(now);
  if (!over_ && outgoing_.empty()) {
    followDrop(now);
  }
}

// While the printer has no space, `takeFromHost` reads nothing, so it cannot notice that the host
// has left. This function notices it, and then reads the last data of the host. The amount of this
// data is small, because the host can send no more.
void HostConnection::noticeHangUp() {
  constexpr int hangUp = POLLRDHUP | POLLHUP | POLLERR;
  const bool wouldBeRead = hostEnded_ || wantsBytes();
  if (wouldBeRead || (line_->descriptor().pollUntil(POLLRDHUP, {}) & hangUp) == 0) {
    return;
  }
  std::array<std::uint8_t, pieceSize> bytes;
  std::ptrdiff_t count = line_->descriptor().receive(bytes.data(), bytes.size());
  for (; count > 0; count = line_->descriptor().receive(bytes.data(), bytes.size())) {
    incoming_.insert(incoming_.end(), bytes.begin(), bytes.begin() + count);
  }
  noteHostEnded();
}

void HostConnection::noteHostEnded() {
  hostEnded_ = true;
  if (!incoming_.empty()) {
    line_->noteHostEnded();
  }
}

void HostConnection::passOn(Instant now) {
  std::size_t taken = 1;
  while (taken > 0 && passedOn_ < incoming_.size()) {
    taken = link_.write(std::span(incoming_).subspan(passedOn_), now);
    passedOn_ += taken;
  }
  if (passedOn_ == incoming_.size()) {
    incoming_.clear();
    passedOn_ = 0;
    readsAhead_ = false;
  }
}

bool HostConnection::wantsBytes() const {
  const std::size_t most = readsAhead_ ? mostReadAhead : 1;
  return !hostEnded_ && incoming_.size() < most;
}

std::size_t HostConnection::wantedBytes(Instant now) const {
  return readsAhead_ ? pieceSize : std::clamp(link_.space(now), reserve, pieceSize);
}

void HostConnection::takeFromHost(Instant now) {
  std::array<std::uint8_t, pieceSize> bytes;
  passOn(now);
  while (wantsBytes()) {
    const std::ptrdiff_t count = line_->descriptor().receive(bytes.data(), wantedBytes(now));
    if (count > 0) {
      incoming_.insert(incoming_.end(), bytes.begin(), bytes.begin() + count);
      passOn(now);
      line_->noteHost();
      lastReceived_ = now;
    } else if (count < 0 && errno == EAGAIN) {
      break;
    } else {
      noteHostEnded();
    }
  }
  over_ = over_ || line_->wasReset();
}

void HostConnection::giveToHost(Instant now) {
  std::array<std::uint8_t, pieceSize> bytes;
  while (outgoing_.size() < mostOutgoing) {
    const std::size_t count = link_.read(bytes, now);
    if (count == 0) {
      break;
    }
    outgoing_.insert(outgoing_.end(), bytes.begin(), bytes.begin() + count);
  }
  if (outgoing_.empty()) {
    return;
  }
  const std::ptrdiff_t sent = line_->descriptor().send(outgoing_.data(), outgoing_.size());
  if (sent > 0) {
    outgoing_.erase(outgoing_.begin(), outgoing_.begin() + sent);
  } else if (errno != EAGAIN) {
    over_ = true;
  }
}

// Called when all bytes have been sent: ends the connection if the printer has dropped the link or
// the host has left.
void HostConnection::followDrop(Instant now) {
  if (link_.wasReset(now)) {
    line_->resetOnClose();
    // The connection ends only at the next call of `work`. A terminal (`pty:`) always has a next
    // host, whose link may be reset as well. If a reset ended the connection before `work`
    // returned, the caller might accept hosts for ever, and never serve the other printers.
    lastSettling_ = now;
  } else if (link_.dropped(now)) {
    line_->endOutput();
    lastSettling_ = now + settlingTime;
  } else if (hostEnded_ && incoming_.empty()) {
    over_ = true;
  }
}

}  // namespace quordalvane::tool
