#include "tools/quorport/simulate/ControlChannel.h"

#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <utility>

#include "logging/DescriptorOutput.h"

namespace quordalvane::tool {
namespace {

constexpr std::size_t longestLine = std::size_t{64} << 10U;
constexpr std::size_t mostAnswers = std::size_t{64} << 10U;
constexpr std::size_t mostWaiting = std::size_t{1} << 20U;

// A pipe that is ready for writing takes this many bytes without blocking.
constexpr std::size_t pieceSize = 4096;

constexpr auto tooLong =
    "{\"ok\":false,\"error\":\"the line is too long; at most 65536 bytes are allowed\"}\n";

bool isReady(int descriptor, short events) {
  pollfd asked{.fd = descriptor, .events = events, .revents = 0};
  return ::poll(&asked, 1, 0) > 0;
}

}  // namespace

ControlChannel::ControlChannel(std::unique_ptr<Line> line, Control& control)
    : line_(std::move(line)),
      in_(line_->descriptor().number()),
      out_(line_->descriptor().number()),
      control_(control) {}

void ControlChannel::await(std::vector<pollfd>& awaited) const {
  if (!inputEnded_ && answers_.size() < mostAnswers) {
    awaited.push_back({.fd = in_, .events = POLLIN, .revents = 0});
  }
  if (!answers_.empty()) {
    awaited.push_back({.fd = out_, .events = POLLOUT, .revents = 0});
  }
}

void ControlChannel::work(simulator::Instant now) {
  if (!inputEnded_ && answers_.size() < mostAnswers && isReady(in_, POLLIN)) {
    readLines(now);
  }
  if (!answers_.empty() && isReady(out_, POLLOUT)) {
    writeAnswers();
  }
}

void ControlChannel::readLines(simulator::Instant now) {
  std::array<char, pieceSize> bytes;
  const ssize_t count = ::read(in_, bytes.data(), bytes.size());
  if (count > 0) {
    unread_.append(bytes.data(), static_cast<std::size_t>(count));
    takeLines(now);
  } else if (count == 0 || (errno != EAGAIN && errno != EINTR)) {
    inputEnded_ = true;
    if (!unread_.empty() && !skipsLine_) {
      unread_ += '\n';
      takeLines(now);
    }
  }
}

void ControlChannel::takeLines(simulator::Instant now) {
  std::size_t end = unread_.find('\n');
  for (; end != std::string::npos; end = unread_.find('\n')) {
    if (!std::exchange(skipsLine_, false)) {
      answers_ += control_.answer(unread_.substr(0, end), now) + "\n";
    }
    unread_.erase(0, end + 1);
  }
  if (unread_.size() > longestLine) {
    answers_ += skipsLine_ ? "" : tooLong;
    skipsLine_ = true;
    unread_.clear();
  }
}

void ControlChannel::say(const std::string& lines) {
  answers_ += lines;
  if (answers_.size() > mostWaiting) {
    flush();
  }
}

void ControlChannel::flush() {
  writeAll(out_, answers_);
  answers_.clear();
}

void ControlChannel::writeAnswers() {
  const ssize_t count = ::write(out_, answers_.data(), std::min(answers_.size(), pieceSize));
  if (count > 0) {
    answers_.erase(0, static_cast<std::size_t>(count));
  } else if (errno != EAGAIN && errno != EINTR) {
    inputEnded_ = true;  // the client takes no more answers, so it counts as gone
    answers_.clear();
  }
}

}  // namespace quordalvane::tool
