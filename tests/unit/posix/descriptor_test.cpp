#include "backends/posix/Descriptor.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <linux/sockios.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <optional>
#include <utility>

#include "backends/posix/Connect.h"
#include "tests/support/Listener.h"
#include "tests/support/PseudoTerminal.h"
#include "tests/unit/posix/NoMoreFiles.h"
#include "tests/unit/posix/SignalStorm.h"
#include "tests/unit/posix/Stopwatch.h"
#include "tests/unit/posix/SystemCalls.h"

namespace quordalvane::posix {
namespace {

using namespace std::chrono_literals;

// A wait that ends immediately takes fewer seconds than this. A wait that misses its event lasts an
// hour.
constexpr double atOnce = 20;

SteadyTime inAnHour() {
  return SteadyClock::now() + 1h;
}

/// Both ends of a connection over the loopback.
class TcpDescriptor : public testing::Test {
 protected:
  ~TcpDescriptor() override {
    if (device_ >= 0) {
      ::close(device_);
    }
  }

  void deviceWrites(const char* text, std::size_t size) const {
    ASSERT_EQ(::write(device_, text, size), static_cast<ssize_t>(size));
  }

  /// Resets the connection instead of closing it.
  void deviceResets() {
    const linger none{.l_onoff = 1, .l_linger = 0};
    ASSERT_EQ(::setsockopt(device_, SOL_SOCKET, SO_LINGER, &none, sizeof none), 0);
    ::close(std::exchange(device_, -1));
  }

  std::ptrdiff_t receiveUntil(SteadyTime deadline) {
    return socket_.receiveUntil(buffer_, sizeof buffer_, deadline);
  }

  const test::Listener listener_ = test::Listener::onLoopback(1);
  const Descriptor socket_ = connectTcp("127.0.0.1", listener_.port());
  int device_ = listener_.accept();
  std::uint8_t buffer_[16] = {};
};

TEST_F(TcpDescriptor, ReceivesArrivedBytesOrReportsThatThereAreNone) {
  EXPECT_EQ(socket_.receive(buffer_, sizeof buffer_), -1);
  EXPECT_EQ(errno, EAGAIN);
  deviceWrites("abc", 3);
  EXPECT_EQ(receiveUntil(inAnHour()), 3);
}

TEST_F(TcpDescriptor, AWaitEndsAtItsDeadlineIfNoByteArrives) {
  for (const auto length : {0ms, 10ms, 120ms}) {
    const Stopwatch watch;
    EXPECT_EQ(receiveUntil(SteadyClock::now() + length), -1);
    EXPECT_EQ(errno, EAGAIN);
    EXPECT_GE(watch.seconds(), std::chrono::duration<double>(length).count());
    EXPECT_LT(watch.seconds(), atOnce);
  }
}

TEST_F(TcpDescriptor, AWaitOf2MillisecondsEndsWithin25Milliseconds) {
  double shortest = atOnce;
  for (int i = 0; i < 20; ++i) {
    const Stopwatch watch;
    receiveUntil(SteadyClock::now() + 2ms);
    shortest = std::min(shortest, watch.seconds());
  }
  EXPECT_LT(shortest, 0.025);  // with the socket's own time-out, each wait would take 0.03 s
}

TEST_F(TcpDescriptor, AWaitOf100MillisecondsIsNotProlongedByTheSocketsTimeout) {
  double shortest = atOnce;
  for (int i = 0; i < 5; ++i) {
    const Stopwatch watch;
    receiveUntil(SteadyClock::now() + 100ms);
    shortest = std::min(shortest, watch.seconds());
  }
  EXPECT_LT(shortest, 0.9);
}

TEST_F(TcpDescriptor, SignalsDoNotEndAWait) {
  const SignalStorm storm;
  const Stopwatch watch;
  EXPECT_EQ(receiveUntil(SteadyClock::now() + 100ms), -1);
  EXPECT_EQ(errno, EAGAIN);
  EXPECT_GE(watch.seconds(), 0.1);
  EXPECT_GT(storm.strikes(), 0);
}

TEST_F(TcpDescriptor, TheEndOfTheStreamEndsAWait) {
  ::close(std::exchange(device_, -1));
  const Stopwatch watch;
  EXPECT_EQ(receiveUntil(inAnHour()), 0);
  EXPECT_LT(watch.seconds(), atOnce);
}

TEST_F(TcpDescriptor, TheEndOfTheStreamIsReportedEvenIfErrnoIsSet) {
  ::close(std::exchange(device_, -1));
  ASSERT_EQ(receiveUntil(inAnHour()), 0);
  errno = EINTR;
  EXPECT_EQ(socket_.receive(buffer_, sizeof buffer_), 0);
}

TEST_F(TcpDescriptor, BytesAreReceivedEvenIfErrnoIsSet) {
  deviceWrites("ab", 2);
  ASSERT_EQ(socket_.pollUntil(POLLIN, inAnHour()), POLLIN);
  errno = EINTR;
  EXPECT_EQ(socket_.receive(buffer_, 1), 1);
  EXPECT_EQ(buffer_[0], 'a');
}

TEST_F(TcpDescriptor, AResetEndsAWaitAndIsReportedAsAReset) {
  deviceResets();
  const Stopwatch watch;
  EXPECT_EQ(receiveUntil(inAnHour()), -1);
  EXPECT_EQ(errno, ECONNRESET);
  EXPECT_LT(watch.seconds(), atOnce);
}

TEST_F(TcpDescriptor, APollReturnsOnlyTheEventsThatHaveHappened) {
  EXPECT_EQ(socket_.pollUntil(POLLIN, SteadyTime{}), 0);
  EXPECT_EQ(socket_.pollUntil(POLLOUT, inAnHour()), POLLOUT);
  deviceWrites("a", 1);
  EXPECT_EQ(socket_.pollUntil(POLLIN, inAnHour()), POLLIN);
}

TEST_F(TcpDescriptor, AnErrorOfTheSystemEndsAPoll) {
  const NoMoreFiles none;
  EXPECT_EQ(socket_.pollUntil(POLLIN, inAnHour()), POLLERR);
}

TEST_F(TcpDescriptor, EndOutputEndsOnlyTheDirectionToTheDevice) {
  socket_.endOutput();
  char byte = 0;
  EXPECT_EQ(::read(device_, &byte, 1), 0);
  deviceWrites("still", 5);
  EXPECT_EQ(receiveUntil(inAnHour()), 5);
}

TEST_F(TcpDescriptor, AShutdownEndsBothDirections) {
  socket_.shutdown();
  EXPECT_EQ(receiveUntil(inAnHour()), 0);
  const std::uint8_t byte = 'x';
  EXPECT_EQ(socket_.send(&byte, 1), -1);
  EXPECT_EQ(errno, EPIPE);
}

TEST_F(TcpDescriptor, APeerThatAcknowledgesBytesIsNotSilent) {
  const std::uint8_t byte = 'x';
  ASSERT_EQ(socket_.send(&byte, 1), 1);
  EXPECT_EQ(socket_.silence(), 0ms);
}

TEST(LocalDescriptor, HasBytesUnderWayUntilTheDeviceReadsThem) {
  int ends[2] = {-1, -1};
  ASSERT_EQ(::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends), 0);
  const Descriptor link(ends[0], Descriptor::Kind::Socket);
  const Descriptor device(ends[1], Descriptor::Kind::Socket);
  EXPECT_FALSE(link.hasUnderWay());
  std::uint8_t byte = 'x';
  ASSERT_EQ(link.send(&byte, 1), 1);
  EXPECT_TRUE(link.hasUnderWay());
  EXPECT_EQ(device.receive(&byte, 1), 1);
  EXPECT_FALSE(link.hasUnderWay());
}

TEST(BluetoothDescriptor, HasUndeliveredBytesIfTheSystemReportsLessFreeSpaceThanInitially) {
  int ends[2] = {-1, -1};
  ASSERT_EQ(::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends), 0);
  const Descriptor device(ends[1], Descriptor::Kind::Socket);
  std::optional<int> space = 100;
  const AnsweredIoctl system(SIOCOUTQ, [&space](void* answer) {
    *static_cast<int*>(answer) = space.value_or(0);
    return space ? 0 : unknownRequest(answer);
  });
  const Descriptor link(ends[0], Descriptor::Kind::Bluetooth);
  EXPECT_FALSE(link.hasUnderWay());
  space = 60;
  EXPECT_TRUE(link.hasUnderWay());
  space = std::nullopt;
  EXPECT_FALSE(link.hasUnderWay()) << "the system does not report the space";
}

TEST(LocalDescriptor, NeverReportsThatTheOtherSideIsSilent) {
  int ends[2] = {-1, -1};
  ASSERT_EQ(::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends), 0);
  const Descriptor link(ends[0], Descriptor::Kind::Socket);
  const Descriptor device(ends[1], Descriptor::Kind::Socket);
  EXPECT_EQ(link.silence(), 0ms);
}

TEST(TerminalDescriptor, ReportsNoBytesUnderWay) {
  const auto [master, line] = test::openPseudoTerminal();
  const Descriptor device(master, Descriptor::Kind::Terminal);
  const Descriptor link(::open(line.c_str(), O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC),
                        Descriptor::Kind::Terminal);
  const std::uint8_t byte = 'x';
  ASSERT_EQ(link.send(&byte, 1), 1);
  EXPECT_FALSE(link.hasUnderWay());
}

TEST(Descriptor, ReportsNoPortStateIfItIsNoPrinter) {
  for (const auto kind : {Descriptor::Kind::UsbPrinter, Descriptor::Kind::Terminal}) {
    const Descriptor null(::open("/dev/null", O_RDWR | O_CLOEXEC), kind);
    EXPECT_EQ(null.portState(), "");
  }
}

TEST(Descriptor, AMovedDescriptorIsClosedByItsNewOwner) {
  int number = -1;
  {
    int ends[2] = {-1, -1};
    ASSERT_EQ(::pipe2(ends, O_CLOEXEC), 0);
    ::close(ends[1]);
    number = ends[0];
    Descriptor first(number, Descriptor::Kind::Terminal);
    const Descriptor second(std::move(first));
    EXPECT_EQ(first.number(), -1);  // NOLINT(bugprone-use-after-move): a moved descriptor is -1
    EXPECT_EQ(second.number(), number);
    EXPECT_GE(::fcntl(number, F_GETFD), 0);
  }
  EXPECT_EQ(::fcntl(number, F_GETFD), -1);
}

}  // namespace
}  // namespace quordalvane::posix
