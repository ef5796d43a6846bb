#include "backends/posix/Linger.h"

#include <poll.h>

#include <algorithm>
#include <array>
#include <cerrno>

namespace quordalvane::posix {
namespace {

// The system does not report when the last byte has been taken, so it is asked again this often.
constexpr std::chrono::milliseconds lookInterval{5};

// How many buffers full of bytes are thrown away between two looks, so that a device that never
// stops talking cannot hold up the end.
constexpr int discardedAtOnce = 16;

// Throws away the bytes that have arrived. True while more may arrive.
bool discardInput(const Descriptor& connection) {
  std::array<std::uint8_t, 4096> discarded;
  for (int i = 0; i < discardedAtOnce; ++i) {
    const std::ptrdiff_t count = connection.receive(discarded.data(), discarded.size());
    if (count <= 0) {
      return count == -1 && (errno == EAGAIN || errno == EWOULDBLOCK);
    }
  }
  return true;
}

}  // namespace

void linger(const Descriptor& connection, SteadyTime deadline) {
  // Unread bytes also turn the close into a reset.
  bool mayComeMore = discardInput(connection);
  if (!mayComeMore || !connection.hasUnderWay()) {
    return;
  }
  connection.endOutput();
  for (auto now = SteadyClock::now(); now < deadline && mayComeMore && connection.hasUnderWay();
       now = SteadyClock::now()) {
    connection.pollUntil(POLLIN, std::min(deadline, now + lookInterval));
    mayComeMore = discardInput(connection);
  }
}

}  // namespace quordalvane::posix
