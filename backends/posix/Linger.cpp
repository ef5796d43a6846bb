#include "backends/posix/Linger.h"

#include <poll.h>

#include <algorithm>
#include <array>
#include <cerrno>

namespace quordalvane::posix {
namespace {

// The system does not report by itself that the other side has taken the last byte, so the loop
// asks the system at this interval.
constexpr std::chrono::milliseconds lookInterval{5};

// The maximum number of full buffers that are dropped between two checks of the deadline. Without a
// maximum, a device that never stops sending could keep `linger` from returning.
constexpr int discardedAtOnce = 16;

// Drops the bytes that have arrived. Returns true if more may arrive.
bool discardInput(const Descriptor& connection) {
  std::array<std::uint8_t, 4096> discarded;
  for (int i = 0; i < discardedAtOnce; ++i) {
    const std::ptrdiff_t count = connection.receive(discarded.data(), discarded.size());
    if (count <= 0) {
      return count == -1 && errno == EAGAIN;
    }
  }
  return true;
}

}  // namespace

void linger(const Descriptor& connection, SteadyTime deadline) {
  // If input were unread, the close would become a reset, so the input is read first.
  bool mayComeMore = discardInput(connection);
  if (!mayComeMore || !connection.hasUnderWay()) {
    return;
  }
  connection.endOutput();
  while (mayComeMore && connection.hasUnderWay() && !hasPassed(deadline)) {
    connection.pollUntil(POLLIN, std::min(deadline, SteadyClock::now() + lookInterval));
    mayComeMore = discardInput(connection);
  }
}

}  // namespace quordalvane::posix
