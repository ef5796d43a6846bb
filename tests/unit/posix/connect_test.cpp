#include "backends/posix/Connect.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/socket.h>

#include <vector>

#include "tests/support/Listener.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/unit/posix/NoMoreFiles.h"
#include "tests/unit/posix/SignalStorm.h"
#include "tests/unit/posix/Stopwatch.h"

namespace quordalvane::posix {
namespace {

using namespace std::chrono_literals;
using test::Listener;
using test::TemporaryFolder;
using testing::AllOf;
using testing::HasSubstr;

// Connects until the listener no longer answers, and returns how long the last attempt took and why
// it failed. The time-out is long enough to distinguish a time-out from an immediate failure.
template <typename Connect>
std::pair<double, std::string> connectUntilSilent(Connect connect) {
  std::vector<Descriptor> waiting;
  while (waiting.size() < 100) {
    const Stopwatch watch;
    try {
      waiting.push_back(connect(150ms));
    } catch (const std::exception& error) {
      return {watch.seconds(), error.what()};
    }
  }
  return {0, "the listener took everyone"};
}

// Returns a TCP port at which no program listens, because its listener has just been closed.
std::uint16_t closedPort() {
  return Listener::onLoopback(1).port();
}

SocketAddress at(std::uint16_t port) {
  return resolve("127.0.0.1", port, SteadyClock::now() + 5s).front();
}

int option(const Descriptor& socket, int level, int name) {
  int value = -1;
  socklen_t length = sizeof value;
  EXPECT_EQ(::getsockopt(socket.number(), level, name, &value, &length), 0);
  return value;
}

template <typename Connect>
std::string failure(Connect connect) {
  try {
    connect();
  } catch (const std::exception& error) {
    return error.what();
  }
  return "it connected";
}

TEST(ConnectTcp, SetsTheSocketOptionsForShortExchanges) {
  const Listener listener = Listener::onLoopback(4);
  const Descriptor socket = connectTcp("127.0.0.1", listener.port());
  EXPECT_EQ(option(socket, IPPROTO_TCP, TCP_NODELAY), 1);
  EXPECT_EQ(option(socket, SOL_SOCKET, SO_KEEPALIVE), 1);
  EXPECT_EQ(option(socket, IPPROTO_TCP, TCP_KEEPIDLE), 15);
  EXPECT_EQ(option(socket, IPPROTO_TCP, TCP_KEEPINTVL), 15);
  EXPECT_EQ(option(socket, IPPROTO_TCP, TCP_KEEPCNT), 7);
  EXPECT_EQ(option(socket, IPPROTO_TCP, TCP_USER_TIMEOUT), 0)
      << "it would cut off a printer that stops the flow for so long";
  EXPECT_EQ(::fcntl(socket.number(), F_GETFD), FD_CLOEXEC);
}

TEST(ConnectTcp, ResolvesNames) {
  const Listener listener = Listener::onLoopback(4);
  EXPECT_GE(connectTcp("localhost", listener.port()).number(), 0);
}

TEST(ConnectToAny, SkipsAnAddressThatRefusesTheConnection) {
  const Listener listener = Listener::onLoopback(4);
  EXPECT_GE(connectToAny({at(closedPort()), at(listener.port())}, SteadyClock::now() + 5s).number(),
            0);
}

TEST(ConnectToAny, SkipsASilentAddressAfterHalfTheTimeout) {
  const Listener silent = Listener::onLoopback(0);
  connectUntilSilent([&](auto timeout) { return connectTcp("127.0.0.1", silent.port(), timeout); });
  const Listener listener = Listener::onLoopback(4);
  const Stopwatch watch;
  EXPECT_GE(
      connectToAny({at(silent.port()), at(listener.port())}, SteadyClock::now() + 4s).number(), 0);
  EXPECT_GE(watch.seconds(), 1.5);
  EXPECT_LT(watch.seconds(), 4);
}

TEST(ConnectToAny, ThrowsTheErrorOfTheLastAddress) {
  const SocketAddress refusing = at(closedPort());
  EXPECT_THAT(failure([=] {
                connectToAny({refusing, refusing}, SteadyClock::now() + 5s);
              }),
              HasSubstr("Connection refused"));
}

TEST(ConnectTcp, TheErrorOfARefusalNamesTheHostAndThePort) {
  const std::uint16_t port = closedPort();
  const Stopwatch watch;
  EXPECT_THAT(failure([=] { connectTcp("127.0.0.1", port); }),
              AllOf(HasSubstr("127.0.0.1"), HasSubstr(std::to_string(port)),
                    HasSubstr("Connection refused")));
  EXPECT_LT(watch.seconds(), 4);
}

TEST(ConnectTcp, FailsAtTheTimeoutIfTheHostNeverAnswers) {
  const Listener listener = Listener::onLoopback(0);
  const auto [seconds, why] = connectUntilSilent(
      [&](auto timeout) { return connectTcp("127.0.0.1", listener.port(), timeout); });
  EXPECT_GE(seconds, 0.1);
  EXPECT_LT(seconds, 10);
  EXPECT_THAT(why, HasSubstr("timed out"));
}

TEST(ConnectTcp, IsNeitherEndedNorProlongedBySignals) {
  const SignalStorm storm;
  const Listener listener = Listener::onLoopback(0);
  const auto [seconds, why] = connectUntilSilent(
      [&](auto timeout) { return connectTcp("127.0.0.1", listener.port(), timeout); });
  EXPECT_GE(seconds, 0.1);
  EXPECT_LT(seconds, 10);
  EXPECT_THAT(why, HasSubstr("timed out"));
  EXPECT_GT(storm.strikes(), 0);
}

TEST(ConnectTcp, TheErrorOfAnUnknownHostNamesTheHost) {
  const std::string host(80, 'h');
  EXPECT_THAT(failure([&] { connectTcp(host, 9100); }), HasSubstr(host));
}

TEST(ConnectUnix, ConnectsASocketThatIsClosedOnExec) {
  const TemporaryFolder folder;
  const Listener listener = Listener::at(folder.file("s"), 4);
  const Descriptor socket = connectUnix(folder.file("s"));
  EXPECT_EQ(::fcntl(socket.number(), F_GETFD), FD_CLOEXEC);
}

TEST(ConnectUnix, TheErrorOfAnUnusablePathNamesThePathAndTheReason) {
  const TemporaryFolder folder;
  EXPECT_THAT(failure([&] { connectUnix(folder.file("none")); }),
              AllOf(HasSubstr(folder.file("none")), HasSubstr("No such file")));
  EXPECT_THAT(failure([&] { connectUnix(folder.file("")); }), HasSubstr("refused"));
}

TEST(ConnectUnix, AcceptsAPathOf107BytesAndRefusesALongerOne) {
  const TemporaryFolder folder;
  std::string path = folder.file("");
  path += std::string(107 - path.size(), 's');
  const Listener listener = Listener::at(path, 4);
  EXPECT_GE(connectUnix(path).number(), 0);
  EXPECT_THAT(failure([&] { connectUnix(path + "s"); }), HasSubstr("too long"));
}

TEST(ConnectUnix, ReportsThatTheProcessMayOpenNoMoreFiles) {
#if defined(__SANITIZE_ADDRESS__)
  GTEST_SKIP() << "the sanitizer opens a pipe to check the type of an exception";
#endif
  const TemporaryFolder folder;
  const Listener listener = Listener::at(folder.file("s"), 4);
  const NoMoreFiles none;
  EXPECT_THAT(failure([&] { connectUnix(folder.file("s")); }), HasSubstr("Too many open files"));
}

TEST(ConnectUnix, FailsAtTheTimeoutIfTheListenerNeverAnswers) {
  const SignalStorm storm;
  const TemporaryFolder folder;
  const Listener listener = Listener::at(folder.file("s"), 0);
  const auto [seconds, why] =
      connectUntilSilent([&](auto timeout) { return connectUnix(folder.file("s"), timeout); });
  EXPECT_GE(seconds, 0.1);
  EXPECT_LT(seconds, 10);
  EXPECT_THAT(why, HasSubstr("timed out"));
}

}  // namespace
}  // namespace quordalvane::posix
