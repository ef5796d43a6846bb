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

constexpr std::size_t mostOutgoing = std::size_t{64} << 10U;

// How long a host may take to notice that the printer has dropped the link before bytes on their
// way to it are given up, and how often it is looked at meanwhile.
constexpr Instant settlingTime = 1s;
constexpr Instant settlingPause = 10ms;

}  // namespace

HostConnection::HostConnection(std::unique_ptr<Line> line, simulator::PrinterLink& link)
    : line_(std::move(line)), link_(link) {}

bool HostConnection::takes(Instant now) const {
  return !hostEnded_ && link_.space(now) > 0;
}

void HostConnection::await(std::vector<pollfd>& awaited, Instant now) const {
  const int wantsBytes = takes(now) ? POLLIN : 0;
  const int wantsSpace = outgoing_.empty() ? 0 : POLLOUT;
  const auto events = static_cast<short>(wantsBytes | wantsSpace);
  // Waiting for nothing, a line whose host has gone would be ready without end.
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
  takeFromHost(now);
  giveToHost(now);
  if (!over_ && outgoing_.empty()) {
    followDrop(now);
  }
}

void HostConnection::takeFromHost(Instant now) {
  std::array<std::uint8_t, 4096> bytes;
  while (takes(now)) {
    const std::size_t most = std::min(bytes.size(), link_.space(now));
    const std::ptrdiff_t count = line_->descriptor().receive(bytes.data(), most);
    if (count > 0) {
      link_.write(std::span(bytes).first(static_cast<std::size_t>(count)), now);
      line_->noteHost();
      lastReceived_ = now;
    } else if (count < 0 && errno == EAGAIN) {
      break;
    } else {
      hostEnded_ = true;
    }
  }
  over_ = over_ || line_->wasReset();
}

void HostConnection::giveToHost(Instant now) {
  std::array<std::uint8_t, 4096> bytes;
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

// Everything has been sent: ends the connection where one of the two sides has ended it.
void HostConnection::followDrop(Instant now) {
  if (link_.wasReset(now)) {
    line_->resetOnClose();
    lastSettling_ = now;
    over_ = true;
  } else if (link_.dropped(now)) {
    line_->endOutput();
    lastSettling_ = now + settlingTime;
  } else if (hostEnded_) {
    over_ = true;
  }
}

}  // namespace quordalvane::tool
