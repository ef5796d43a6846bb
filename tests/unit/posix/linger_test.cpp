#include "backends/posix/Linger.h"

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <unistd.h>

#include <atomic>
#include <thread>
#include <vector>

#include "tests/support/SleepingThread.h"
#include "tests/unit/posix/Stopwatch.h"

namespace quordalvane::posix {
namespace {

using namespace std::chrono_literals;

constexpr double atOnce = 20;  // seconds; a linger that waits for its limit takes an hour

/// Two ends of a local socket: ours, with its output full, and the device's.
class LingerTest : public testing::Test {
 protected:
  ~LingerTest() override { ::close(device()); }

  const Descriptor& link() const { return link_; }
  int device() const { return pair_.ends[1]; }

  /// Sends until there is no space; returns the number of bytes.
  std::size_t fill() const {
    const std::vector<std::uint8_t> piece(4096, 'x');
    std::size_t sent = 0;
    std::ptrdiff_t count = 0;
    while ((count = link_.send(piece.data(), piece.size())) > 0) {
      sent += static_cast<std::size_t>(count);
    }
    return sent;
  }

  /// Returns how many seconds `linger` took, with a limit of an hour.
  double lingered() const {
    const Stopwatch watch;
    linger(link_, SteadyClock::now() + 1h);
    return watch.seconds();
  }

  /// Reads on the device's side to the end of the stream; returns the number of bytes.
  std::size_t readToTheEnd() const {
    std::vector<std::uint8_t> piece(4096);
    std::size_t total = 0;
    ssize_t count = 0;
    while ((count = ::read(device(), piece.data(), piece.size())) > 0) {
      total += static_cast<std::size_t>(count);
    }
    EXPECT_EQ(count, 0);
    return total;
  }

 private:
  struct Pair {
    Pair() { EXPECT_EQ(::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends), 0); }
    int ends[2] = {-1, -1};
  };

  const Pair pair_;
  const Descriptor link_{pair_.ends[0], Descriptor::Kind::Socket};
};

TEST_F(LingerTest, EndsAtOnceIfNoBytesAreUnderWay) {
  EXPECT_LT(lingered(), atOnce);
}

TEST_F(LingerTest, LeavesTheOutputOpenIfNoBytesAreUnderWay) {
  lingered();
  const std::uint8_t byte = 'x';
  EXPECT_EQ(link().send(&byte, 1), 1);
}

TEST_F(LingerTest, WaitsUntilTheDeviceHasReadAllBytes) {
  const std::size_t sent = fill();
  test::SleepingThread lingering([this] { EXPECT_LT(lingered(), atOnce); });
  lingering.awaitSleep();
  EXPECT_EQ(readToTheEnd(), sent);
  lingering.join();
}

TEST_F(LingerTest, EndsAtOnceIfTheDeviceHasEndedItsOutput) {
  fill();
  ASSERT_EQ(::shutdown(device(), SHUT_WR), 0);
  EXPECT_LT(lingered(), atOnce);
}

TEST_F(LingerTest, EndsWhenTheDeviceEndsItsOutputDuringTheWait) {
  fill();
  test::SleepingThread lingering([this] { EXPECT_LT(lingered(), atOnce); });
  lingering.awaitSleep();
  ASSERT_EQ(::shutdown(device(), SHUT_WR), 0);
  lingering.join();
}

TEST_F(LingerTest, EndsAtTheDeadlineAndNotBefore) {
  fill();
  const Stopwatch watch;
  linger(link(), SteadyClock::now() + 100ms);
  EXPECT_GE(watch.seconds(), 0.1);
  EXPECT_LT(watch.seconds(), atOnce);
}

/// How often this thread has given up the processor to wait for something.
long waitsOfThisThread() {
  rusage usage{};
  ::getrusage(RUSAGE_THREAD, &usage);
  return usage.ru_nvcsw;
}

TEST_F(LingerTest, SleepsWhileItWaits) {
  fill();
  const long before = waitsOfThisThread();
  linger(link(), SteadyClock::now() + 100ms);
  EXPECT_GE(waitsOfThisThread() - before, 2);
}

TEST_F(LingerTest, DiscardsBytesFromTheDevice) {
  const std::vector<std::uint8_t> words(10'000, 'd');
  ASSERT_EQ(::write(device(), words.data(), words.size()), static_cast<ssize_t>(words.size()));
  lingered();
  std::uint8_t byte = 0;
  EXPECT_EQ(link().receive(&byte, 1), -1);
  EXPECT_EQ(errno, EAGAIN);
}

TEST_F(LingerTest, EndsAtTheDeadlineEvenIfTheDeviceNeverStopsSending) {
  fill();
  std::atomic<bool> isOver = false;
  std::thread talking([&] {
    const std::vector<std::uint8_t> words(4096, 'd');
    while (!isOver) {
      ::send(device(), words.data(), words.size(), MSG_DONTWAIT | MSG_NOSIGNAL);
    }
  });
  const Stopwatch watch;
  linger(link(), SteadyClock::now() + 100ms);
  EXPECT_LT(watch.seconds(), atOnce);
  isOver = true;
  talking.join();
}

}  // namespace
}  // namespace quordalvane::posix
