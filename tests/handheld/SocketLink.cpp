#include "tests/handheld/SocketLink.h"

#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>

namespace quordalvane::test {

SocketLink::SocketLink(int number) : number_(number) {}

SocketLink::~SocketLink() {
  ::close(number_);
}

short SocketLink::eventsNow(short asked) const {
  pollfd question{.fd = number_, .events = asked, .revents = 0};
  ::poll(&question, 1, 0);
  return question.revents;
}

bool SocketLink::hasBytes() {
  const std::lock_guard lock(mutex_);
  std::uint8_t byte = 0;
  return !isEnded_ && ::recv(number_, &byte, 1, MSG_PEEK | MSG_DONTWAIT) == 1;
}

bool SocketLink::hasSpace() {
  const std::lock_guard lock(mutex_);
  return !isEnded_ && (eventsNow(POLLOUT) & POLLOUT) != 0;
}

std::int64_t SocketLink::read(std::uint8_t* buffer, std::size_t maxLength) {
  const std::lock_guard lock(mutex_);
  if (isEnded_) {
    return -1;
  }
  const ssize_t count = ::recv(number_, buffer, maxLength, MSG_DONTWAIT);
  if (count < 0 && errno != EAGAIN) {
    isBroken_ = true;
  }
  return count < 0 ? 0 : count;
}

std::int64_t SocketLink::write(const std::uint8_t* bytes, std::size_t length) {
  const std::lock_guard lock(mutex_);
  if (isEnded_) {
    return -1;
  }
  const ssize_t count = ::send(number_, bytes, length, MSG_DONTWAIT | MSG_NOSIGNAL);
  if (count < 0 && errno != EAGAIN) {
    isBroken_ = true;
    return -1;
  }
  return count < 0 ? 0 : count;
}

void SocketLink::end() {
  const std::lock_guard lock(mutex_);
  if (!isEnded_) {
    isEnded_ = true;
    ::shutdown(number_, SHUT_RDWR);
  }
}

bool SocketLink::isHungUp() {
  const std::lock_guard lock(mutex_);
  return isBroken_ || (!isEnded_ && (eventsNow(POLLRDHUP) & (POLLRDHUP | POLLHUP | POLLERR)) != 0);
}

bool SocketLink::isLost() {
  const std::lock_guard lock(mutex_);
  std::uint8_t byte = 0;
  const ssize_t count = isEnded_ ? 1 : ::recv(number_, &byte, 1, MSG_PEEK | MSG_DONTWAIT);
  if (count < 0 && errno != EAGAIN) {
    isBroken_ = true;
  }
  return !isEnded_ && (count == 0 || (count < 0 && isBroken_));
}

bool SocketLink::isOutputBroken() {
  const std::lock_guard lock(mutex_);
  return isBroken_ || (!isEnded_ && (eventsNow(POLLOUT) & (POLLERR | POLLHUP)) != 0);
}

}  // namespace quordalvane::test
