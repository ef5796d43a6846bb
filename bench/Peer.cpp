#include "bench/Peer.h"

#include <sys/epoll.h>
#include <unistd.h>

#include <array>
#include <utility>

namespace quordalvane::bench {

const std::vector<std::uint8_t> lineStatusRequest = {0x1b, 0x2a, 0x72, 0x42, 0x1b, 0x1d, 0x03,
                                                     0x04, 0x00, 0x00, 0x1b, 0x06, 0x01};
const std::vector<std::uint8_t> lineStatusReply = {0x89, 0x01, 0, 0, 0, 0, 0, 0, 0};
const std::vector<std::uint8_t> dataCancelEnd = {0x1b, 0x1d, 0x03, 0x04, 0x00, 0x00};
const std::vector<std::uint8_t> escposQueries[3] = {
    {0x10, 0x04, 0x01}, {0x10, 0x04, 0x02}, {0x10, 0x04, 0x04}};

namespace {

/// Remembers the last three bytes that arrived. The answer depends only on these bytes.
class Requests {
 public:
  /// Returns the reply to the request that `byte` completes; empty if `byte` completes no request.
  std::span<const std::uint8_t> replyTo(std::uint8_t byte) {
    last_ = (last_ << 8U | byte) & 0xffffffU;
    if (last_ == 0x1b0601) {
      return lineStatusReply;
    }
    return last_ >> 8U == 0x1004 ? std::span(&escposReply, 1) : std::span<const std::uint8_t>();
  }

 private:
  std::uint32_t last_ = 0;
};

/// Reads once, and answers. Returns false at the end of the connection.
bool answerOnce(int descriptor, Requests& requests, std::chrono::microseconds delay) {
  std::array<std::uint8_t, 4096> buffer;
  const ssize_t count = ::read(descriptor, buffer.data(), buffer.size());
  if (count <= 0) {
    return false;
  }
  for (const std::uint8_t byte : std::span(buffer).first(static_cast<std::size_t>(count))) {
    const auto reply = requests.replyTo(byte);
    if (!reply.empty() && delay.count() > 0) {
      std::this_thread::sleep_for(delay);
    }
    sendAll(descriptor, reply);
  }
  return true;
}

/// Returns true if any byte arrived before the other side ended the connection.
bool answerUntilItsEnd(int descriptor, std::chrono::microseconds delay) {
  Requests requests;
  bool anyCame = false;
  while (answerOnce(descriptor, requests, delay)) {
    anyCame = true;
  }
  ::close(descriptor);
  return anyCame;
}

}  // namespace

bool sendAll(int descriptor, std::span<const std::uint8_t> bytes) {
  while (!bytes.empty()) {
    const ssize_t count = ::write(descriptor, bytes.data(), bytes.size());
    if (count <= 0) {
      return false;
    }
    bytes = bytes.subspan(static_cast<std::size_t>(count));
  }
  return true;
}

Peer::~Peer() {
  if (thread_.joinable()) {
    thread_.join();
  }
}

void Peer::run(std::function<void()> body) {
  thread_ = std::thread([core = core_, body = std::move(body)] {
    bindTo(core);
    body();
  });
}

void Peer::answer(int descriptor, std::chrono::microseconds delay) {
  run([=] { answerUntilItsEnd(descriptor, delay); });
}

void Peer::answerAll(Endpoint& endpoint) {
  run([&endpoint] {
    while (answerUntilItsEnd(endpoint.accept(), {})) {
    }
  });
}

void Peer::answerEach(std::vector<int> descriptors) {
  run([descriptors = std::move(descriptors)] {
    const int events = ::epoll_create1(EPOLL_CLOEXEC);
    for (const int descriptor : descriptors) {
      epoll_event awaited{.events = EPOLLIN, .data = {.fd = descriptor}};
      ::epoll_ctl(events, EPOLL_CTL_ADD, descriptor, &awaited);
    }
    // One object is enough for all connections, because whole requests arrive one at a time.
    Requests requests;
    for (std::size_t open = descriptors.size(); open > 0;) {
      epoll_event event{};
      if (::epoll_wait(events, &event, 1, -1) == 1 && !answerOnce(event.data.fd, requests, {})) {
        ::close(event.data.fd);
        --open;
      }
    }
    ::close(events);
  });
}

void Peer::drain(int descriptor, std::function<void(std::size_t)> taken) {
  run([descriptor, taken = std::move(taken)] {
    std::vector<std::uint8_t> bytes(std::size_t{256} * 1024);
    for (ssize_t count; (count = ::read(descriptor, bytes.data(), bytes.size())) > 0;) {
      taken(static_cast<std::size_t>(count));
    }
    ::close(descriptor);
  });
}

}  // namespace quordalvane::bench
