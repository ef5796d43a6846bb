#include "bench/BareLink.h"

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <array>

#include "bench/Peer.h"

namespace quordalvane::bench {

BareLink::BareLink(int descriptor) : descriptor_(descriptor) {
  ::fcntl(descriptor_, F_SETFL, ::fcntl(descriptor_, F_GETFL) | O_NONBLOCK);
}

BareLink::~BareLink() {
  ::close(descriptor_);
}

void BareLink::write(std::span<const std::uint8_t> bytes) {
  while (!bytes.empty()) {
    const ssize_t count = ::write(descriptor_, bytes.data(), bytes.size());
    if (count > 0) {
      bytes = bytes.subspan(static_cast<std::size_t>(count));
    } else {
      pollfd asked{.fd = descriptor_, .events = POLLOUT, .revents = 0};
      ::poll(&asked, 1, -1);
    }
  }
}

bool BareLink::poll(int milliseconds) const {
  pollfd asked{.fd = descriptor_, .events = POLLIN, .revents = 0};
  return ::poll(&asked, 1, milliseconds) > 0;
}

std::size_t BareLink::read(std::span<std::uint8_t> bytes) {
  const ssize_t count = ::read(descriptor_, bytes.data(), bytes.size());
  return static_cast<std::size_t>(std::max<ssize_t>(count, 0));
}

void BareLink::exchange(std::span<const std::uint8_t> request, std::span<std::uint8_t> reply) {
  write(request);
  while (!reply.empty()) {
    poll(-1);
    reply = reply.subspan(read(reply));
  }
}

void exchangeLineStatus(BareLink& link) {
  std::array<std::uint8_t, 9> reply;
  link.exchange(lineStatusRequest, reply);
}

void exchangeEscposStatus(BareLink& link) {
  link.write(dataCancelEnd);
  for (const auto& query : escposQueries) {
    std::uint8_t reply = 0;
    link.exchange(query, {&reply, 1});
  }
}

}  // namespace quordalvane::bench
