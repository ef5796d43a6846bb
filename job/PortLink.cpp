#include "job/PortLink.h"

#include <algorithm>
#include <cstddef>
#include <utility>

#include "job/Words.h"

namespace quordalvane {
namespace {

// The data is written in pieces of at most this size. If a slow link takes only a part of a piece,
// the next piece is at most twice as long as this part. Between two pieces a job checks whether it
// was cancelled, and reports its progress. Smaller pieces would cost more system calls.
constexpr std::size_t largestPiece = std::size_t{512} * 1024;
constexpr std::size_t smallestPiece = 256;

// The pause after a write that found no space, after a read that found no bytes, and after a read
// of more bytes than an answer has.
constexpr std::uint64_t lookPauseMicroseconds = 10000;
constexpr std::size_t longestAnswer = 128;

constexpr auto longestDrain = std::chrono::seconds(1);
constexpr std::size_t largestDrain = std::size_t{1} << 20U;

/// While this object exists, `counter` points to `count`.
class Counting {
 public:
  Counting(std::uint64_t*& counter, std::uint64_t& count) : counter_(counter) { counter = &count; }
  ~Counting() { counter_ = nullptr; }
  Counting(const Counting&) = delete;
  Counting& operator=(const Counting&) = delete;

 private:
  std::uint64_t*& counter_;
};

}  // namespace

PortLink::Limited::Limited(PortLink& link, std::chrono::nanoseconds deadline)
    : link_(link), before_(link.deadline_) {
  link.deadline_ = std::min(deadline, before_);
}

PortLink::PortLink(std::shared_ptr<ExternalAccessoryPort> port, const std::atomic<bool>& cancelled)
    : port_(std::move(port)), cancelled_(cancelled) {
  port_->setTransferObserver(this);
}

PortLink::~PortLink() {
  port_->setTransferObserver(nullptr);
}

std::chrono::milliseconds PortLink::timeout() const {
  return std::chrono::milliseconds(std::max(port_->timeoutMillis(), 1000U));
}

void PortLink::goOn() const {
  if (cancelled_ && !isCancelIgnored_) {
    throw Cancelled();
  }
  if (now() > deadline_) {
    throw GivenUp();
  }
}

void PortLink::bytesWritten(ByteView bytes) {
  if (accepted_ != nullptr) {
    *accepted_ += bytes.size();
  }
  if (listener_ != nullptr) {
    listener_->bytesWritten(bytes);
  }
  goOn();
}

void PortLink::bytesRead(ByteView bytes) {
  if (listener_ != nullptr) {
    listener_->bytesRead(bytes);
  }
  goOn();
}

/// If this function did not throw, some operations of the port would read from a lost link until
/// their time-out.
void PortLink::readFailed() {
  if (deadline_ != noDeadline) {
    throw GivenUp();
  }
}

MaybeSetback PortLink::move(ByteView data, std::uint64_t& accepted, const Progress& progress,
                            Reply reply) {
  const Counting counting(accepted_, accepted);
  auto lastProgress = now();
  std::size_t pieceSize = largestPiece;
  while (accepted < data.size()) {
    goOn();
    const ByteView rest = data.subspan(accepted);
    const std::int32_t written = port_->write(rest.first(std::min(rest.size(), pieceSize)), reply);
    if (written < 0 || (written == 0 && !port_->isConnected())) {
      return failedExchange("the link failed");
    }
    if (written > 0) {
      lastProgress = now();
      pieceSize = std::clamp(2 * static_cast<std::size_t>(written), smallestPiece, largestPiece);
      if (progress) {
        progress();
      }
    } else if (now() - lastProgress > timeout()) {
      return Setback{PrintObstacle::ExchangeFailed,
                     "the printer took no data for " + inSeconds(port_->timeoutMillis())};
    } else {
      pause();
    }
  }
  return std::nullopt;
}

MaybeSetback PortLink::send(ByteView command, Reply reply) {
  std::uint64_t accepted = 0;
  return move(command, accepted, {}, reply);
}

bool PortLink::await(const std::function<bool(ByteView)>& isDone, std::chrono::nanoseconds limit) {
  const auto start = now();
  if (isDone({})) {
    return true;
  }
  while (now() - start <= limit) {
    const auto bytes = port_->read(longestAnswer);
    if (!bytes) {
      return false;
    }
    if (isDone(*bytes)) {
      return true;
    }
    const bool mayBeInPieces = !bytes->empty() && bytes->size() < longestAnswer;
    if (!mayBeInPieces) {
      pause();
    }
  }
  return false;
}

void PortLink::pause() {
  port_->platform().clock().usleep(lookPauseMicroseconds);
}

void PortLink::drain() {
  const auto start = now();
  for (std::size_t left = largestDrain; left > 0 && now() - start < longestDrain;) {
    const auto bytes = port_->readLeftovers(std::min<std::size_t>(left, 256));
    if (!bytes || bytes->empty()) {
      return;
    }
    left -= bytes->size();
  }
}

bool PortLink::isLost() {
  drain();
  return !port_->isConnected();
}

Setback PortLink::failedExchange(const std::string& otherwise) {
  return isLost() ? Setback{PrintObstacle::LinkLost, "link lost"}
                  : Setback{PrintObstacle::ExchangeFailed, otherwise};
}

}  // namespace quordalvane
