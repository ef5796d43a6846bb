#include "tests/handheld/ServedPrinter.h"

#include <gtest/gtest.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <span>

#include "simulator/PrinterLink.h"

namespace quordalvane::test {
namespace {

simulator::Instant now() {
  return std::chrono::steady_clock::now().time_since_epoch();
}

/// Moves bytes both ways between the host and the printer, as many as possible now.
void relay(int number, simulator::PrinterLink& link) {
  std::array<std::uint8_t, 512> bytes{};
  const std::size_t room = std::min(link.space(now()), bytes.size());
  const ssize_t taken = ::recv(number, bytes.data(), room, MSG_DONTWAIT);
  if (taken > 0) {
    link.write(std::span(bytes).first(static_cast<std::size_t>(taken)), now());
  }
  if (const std::size_t count = link.read(bytes, now()); count > 0) {
    ::send(number, bytes.data(), count, MSG_NOSIGNAL);  // a host that has hung up gets no answer
  }
}

}  // namespace

ServedPrinter::ServedPrinter(simulator::PrinterBuilder builder)
    : faults_(builder.faults()), printer_(builder.keepPrinted().state()) {}

ServedPrinter::~ServedPrinter() {
  hangUp();
}

int ServedPrinter::connect() {
  hangUp();
  int ends[2];
  EXPECT_EQ(::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends), 0);
  isStopped_ = false;
  server_ = std::thread([this, number = ends[1]] { serve(number); });
  return ends[0];
}

std::vector<std::uint8_t> ServedPrinter::printed() {
  const std::lock_guard lock(mutex_);
  printer_.advance(now());
  return printer_.printed();
}

void ServedPrinter::hangUp() {
  isStopped_ = true;
  if (server_.joinable()) {
    server_.join();
  }
}

// Ends when the host has hung up, or on request.
void ServedPrinter::serve(int number) {
  std::unique_lock lock(mutex_);
  simulator::PrinterLink link(printer_, now(), faults_);
  pollfd asked{.fd = number, .events = POLLIN, .revents = 0};
  while (!isStopped_ && (asked.revents & POLLHUP) == 0) {
    relay(number, link);
    lock.unlock();
    ::poll(&asked, 1, 1);
    lock.lock();
  }
  ::close(number);
}

}  // namespace quordalvane::test
