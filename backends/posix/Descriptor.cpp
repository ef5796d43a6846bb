#include "backends/posix/Descriptor.h"

#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <utility>

namespace quordalvane::posix {
namespace {

timespec timeLeft(SteadyTime deadline) {
  using namespace std::chrono;
  const auto left = std::max(deadline - SteadyClock::now(), SteadyClock::duration::zero());
  const auto whole = duration_cast<seconds>(left);
  return {.tv_sec = whole.count(), .tv_nsec = nanoseconds(left - whole).count()};
}

// Calls `transfer` until it ends by something else than a signal.
template <typename Transfer>
std::ptrdiff_t uninterrupted(Transfer transfer) {
  std::ptrdiff_t count = transfer();
  while (count < 0 && errno == EINTR) {
    count = transfer();
  }
  return count;
}

}  // namespace

Descriptor::~Descriptor() {
  if (number_ >= 0) {
    ::close(number_);
  }
}

Descriptor::Descriptor(Descriptor&& other) noexcept
    : number_(std::exchange(other.number_, -1)), kind_(other.kind_) {}

std::ptrdiff_t Descriptor::receive(std::uint8_t* buffer, std::size_t maxLength) const {
  return uninterrupted([&] {
    return kind_ == Kind::socket ? ::recv(number_, buffer, maxLength, MSG_DONTWAIT)
                                 : ::read(number_, buffer, maxLength);
  });
}

std::ptrdiff_t Descriptor::send(const std::uint8_t* bytes, std::size_t length) const {
  return uninterrupted([&] {
    return kind_ == Kind::socket ? ::send(number_, bytes, length, MSG_DONTWAIT | MSG_NOSIGNAL)
                                 : ::write(number_, bytes, length);
  });
}

short Descriptor::pollUntil(short events, SteadyTime deadline) const {
  pollfd asked{.fd = number_, .events = events, .revents = 0};
  while (true) {
    const timespec left = timeLeft(deadline);
    const int count = ::ppoll(&asked, 1, &left, nullptr);
    if (count > 0) {
      return asked.revents;
    }
    if (count == 0) {
      return 0;
    }
    if (errno != EINTR) {
      return POLLERR;
    }
  }
}

void Descriptor::shutdown() const {
  if (kind_ == Kind::socket) {
    ::shutdown(number_, SHUT_RDWR);
  }
}

}  // namespace quordalvane::posix
