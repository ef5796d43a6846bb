#include <gtest/gtest.h>
#include <linux/filter.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <vector>

#include "backends/posix/Connect.h"
#include "backends/posix/Link.h"
#include "tests/support/Listener.h"
#include "tests/unit/posix/Stopwatch.h"

// A printer without space still acknowledges the system's probes. A printer that has vanished
// acknowledges nothing.
namespace quordalvane::posix {
namespace {

using namespace std::chrono_literals;

constexpr double generously = 20;  // seconds; only a failing test waits so long

/// The printer's end of a TCP connection, with a small receive buffer.
class Printer {
 public:
  Printer() {
    const int room = 4096;
    EXPECT_EQ(::setsockopt(listener_.number(), SOL_SOCKET, SO_RCVBUF, &room, sizeof room), 0);
  }
  ~Printer() { ::close(number_); }

  Descriptor connect() {
    Descriptor socket = connectTcp("127.0.0.1", listener_.port());
    number_ = listener_.accept();
    return socket;
  }

  /// From now on nothing reaches the printer, so the printer acknowledges nothing.
  void pullTheCable() const {
    std::array<sock_filter, 1> takeNothing = {{BPF_STMT(BPF_RET | BPF_K, 0)}};
    const sock_fprog filter{.len = takeNothing.size(), .filter = takeNothing.data()};
    ASSERT_EQ(::setsockopt(number_, SOL_SOCKET, SO_ATTACH_FILTER, &filter, sizeof filter), 0);
  }

 private:
  const test::Listener listener_ = test::Listener::onLoopback(1);
  int number_ = -1;
};

void fill(Link& link) {
  const std::vector<std::uint8_t> piece(65536, 'x');
  while (link.hasSpace()) {
    ASSERT_GE(link.write(piece.data(), piece.size()), 0);
  }
}

/// Waits as a port does, in many short waits. Returns false if the link is not lost within
/// `seconds`.
bool isLostWithin(Link& link, double seconds) {
  const Stopwatch watch;
  while (!link.isLost()) {
    if (watch.seconds() > seconds) {
      return false;
    }
    link.waitForBytes(0.05);
  }
  return true;
}

TEST(SilentLink, IsLostIfItsBytesAreNotAcknowledged) {
  Printer printer;
  Link link(printer.connect(), 300ms);
  printer.pullTheCable();
  const std::uint8_t byte = 'x';
  ASSERT_EQ(link.write(&byte, 1), 1);
  EXPECT_TRUE(isLostWithin(link, generously));
  EXPECT_EQ(link.write(&byte, 1), -1);
}

TEST(SilentLink, IsLostIfTheCableIsPulledWhileThePrinterHasNoSpace) {
  Printer printer;
  Link link(printer.connect(), 300ms);
  fill(link);
  printer.pullTheCable();
  EXPECT_TRUE(isLostWithin(link, generously));
}

TEST(SilentLink, RemainsConnectedIfThePrinterHasNoSpaceForLongerThanTheLimit) {
  Printer printer;
  Link link(printer.connect(), 300ms);
  fill(link);
  // The intervals between the system's probes grow. The test takes three seconds, so that the
  // intervals become longer than the limit.
  EXPECT_FALSE(isLostWithin(link, 3));
}

TEST(SilentLink, RemainsConnectedIfItIsIdle) {
  Printer printer;
  Link link(printer.connect(), 1ms);
  EXPECT_FALSE(isLostWithin(link, 1.5));
}

TEST(SilentLink, ClosesAtOnceAfterItWasLost) {
  Printer printer;
  Link link(printer.connect(), 300ms);
  fill(link);
  printer.pullTheCable();
  ASSERT_TRUE(isLostWithin(link, generously));
  const Stopwatch watch;
  link.release();
  EXPECT_LT(watch.seconds(), 1.9);  // if the close waited, it would take two seconds
}

}  // namespace
}  // namespace quordalvane::posix
