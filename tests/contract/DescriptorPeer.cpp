#include "tests/contract/DescriptorPeer.h"

#include <gtest/gtest.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>

namespace quordalvane::contract {

void DescriptorPeer::write(const Bytes& bytes) {
  ASSERT_EQ(::write(number_, bytes.data(), bytes.size()), static_cast<ssize_t>(bytes.size()));
}

void DescriptorPeer::say(std::uint8_t byte) {
  if (::send(number_, &byte, 1, MSG_NOSIGNAL | MSG_DONTWAIT) < 0 && errno == ENOTSOCK) {
    EXPECT_LE(::write(number_, &byte, 1), 1);
  }
}

Bytes DescriptorPeer::read(std::size_t count) {
  constexpr int generouslyInMilliseconds = 10'000;
  Bytes bytes(count);
  std::size_t got = 0;
  while (got < count) {
    pollfd asked{.fd = number_, .events = POLLIN, .revents = 0};
    if (::poll(&asked, 1, generouslyInMilliseconds) != 1) {
      break;
    }
    const ssize_t taken = ::read(number_, bytes.data() + got, count - got);
    if (taken <= 0) {
      break;
    }
    got += static_cast<std::size_t>(taken);
  }
  bytes.resize(got);
  return bytes;
}

void DescriptorPeer::close() {
  if (number_ >= 0) {
    ::close(number_);
    number_ = -1;
  }
}

void DescriptorPeer::closeWriting() {
  ASSERT_EQ(::shutdown(number_, SHUT_WR), 0);
}

void DescriptorPeer::reset() {
  // With this option a network socket resets the connection; a local socket does so only if the
  // device has unread bytes.
  const linger abrupt{.l_onoff = 1, .l_linger = 0};
  ASSERT_EQ(::setsockopt(number_, SOL_SOCKET, SO_LINGER, &abrupt, sizeof abrupt), 0);
  close();
}

}  // namespace quordalvane::contract
