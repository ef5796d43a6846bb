#include "tests/counts/SystemCalls.h"

#include <gtest/gtest.h>
#include <linux/sockios.h>
#include <sys/ioctl.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <future>
#include <memory>
#include <optional>
#include <thread>

#include "backends/posix/PosixThread.h"
#include "backends/posix/RunLoop.h"
#include "bench/BareLink.h"
#include "bench/OpenPort.h"
#include "bench/Peer.h"

// The system calls of a port for one exchange. A tick of the system's clock adds a call or two to
// these counts; nothing else changes them.

namespace quordalvane {
namespace {

using bench::Medium;

/// A port over a medium whose printer answers at once.
struct AnsweredPort {
  AnsweredPort(Medium medium, ZKEmulation emulation)
      : peer(bench::Core::First),
        endpoint(bench::makeEndpoint(medium)),
        port(endpoint->device(), emulation) {
    peer.answer(endpoint->accept());
    port.getStatus();
  }

  bench::Peer peer;
  const std::unique_ptr<bench::Endpoint> endpoint;
  bench::OpenPort port;
};

std::size_t waitsIn(const SystemCalls& calls) {
  std::size_t count = 0;
  for (const long number : {SYS_poll, SYS_ppoll, SYS_select, SYS_pselect6, SYS_epoll_wait,
                            SYS_nanosleep, SYS_clock_nanosleep, SYS_futex}) {
    count += countOf(calls, number);
  }
  return count;
}

/// Counts the calls that move bytes or wait. A sanitizer itself makes calls of other kinds.
std::size_t exchangeCallsIn(const SystemCalls& calls) {
  std::size_t count = waitsIn(calls);
  for (const long number : {SYS_read, SYS_recvfrom, SYS_write, SYS_sendto, SYS_rt_sigaction}) {
    count += countOf(calls, number);
  }
  return count;
}

/// Returns the system calls of one status request. If the system's clock ticks during a request,
/// the port checks an idle line again, which adds calls. Therefore this function makes several
/// requests, and returns the calls of the one with the fewest.
std::optional<SystemCalls> callsOfAStatus(AnsweredPort& answered) {
  constexpr int exchanges = 20;
  auto fewest = systemCallsOf([&] { answered.port.getStatus(); });
  for (int i = 1; i < exchanges && fewest; ++i) {
    const auto calls = systemCallsOf([&] { answered.port.getStatus(); });
    if (calls && exchangeCallsIn(*calls) < exchangeCallsIn(*fewest)) {
      fewest = calls;
    }
  }
  return fewest;
}

#define ASSERT_TRACED(calls)                                        \
  if (!(calls)) {                                                   \
    GTEST_SKIP() << "this system does not let a process be traced"; \
  }

TEST(SystemCallCounter, CountsEachCall) {
  const auto endpoint = bench::makeEndpoint(Medium::Local);
  bench::BareLink link(endpoint->connect());
  const auto calls = systemCallsOf([&] {
    link.write(bench::dataCancelEnd);
    link.poll(0);
  });
  ASSERT_TRACED(calls);
  EXPECT_EQ(*calls, (SystemCalls{SYS_write, SYS_poll}));
}

TEST(SystemCalls, ALineModeStatusOverASocketWritesOnceAndReceivesAtMostTwice) {
  for (const Medium medium : {Medium::Tcp, Medium::Local}) {
    AnsweredPort answered(medium, ZKEmulationQuorLine);
    const auto calls = callsOfAStatus(answered);
    ASSERT_TRACED(calls);
    EXPECT_EQ(countOf(*calls, SYS_sendto), 1U);
    EXPECT_LE(countOf(*calls, SYS_recvfrom),
              2U);  // a read of left-over bytes, and a read of the answer
    EXPECT_EQ(countOf(*calls, SYS_rt_sigaction), 1U);
    EXPECT_LE(exchangeCallsIn(*calls), 7U);
  }
}

TEST(SystemCalls, ALineModeStatusOverASerialLineWritesOnceAndWaitsAtMostOnce) {
  AnsweredPort answered(Medium::Terminal, ZKEmulationQuorLine);
  const auto calls = callsOfAStatus(answered);
  ASSERT_TRACED(calls);
  EXPECT_EQ(countOf(*calls, SYS_write), 1U);
  EXPECT_LE(countOf(*calls, SYS_ppoll), 1U);
  EXPECT_LE(exchangeCallsIn(*calls), 7U);
}

TEST(SystemCalls, AnEscPosStatusSendsItsCommandsInFourCalls) {
  AnsweredPort answered(Medium::Tcp, ZKEmulationESCPOS);
  const auto calls = callsOfAStatus(answered);
  ASSERT_TRACED(calls);
  EXPECT_EQ(countOf(*calls, SYS_sendto), 4U);
  EXPECT_LE(exchangeCallsIn(*calls), 16U);
}

/// Waits until all sent bytes have arrived in the receive buffer of the other side.
void awaitArrival(int socket) {
  for (int underWay = 1; underWay > 0;) {
    std::this_thread::yield();
    ASSERT_EQ(::ioctl(socket, SIOCOUTQ, &underWay), 0);
  }
}

TEST(SystemCalls, ReadingArrivedBytesTakesOneCallPer128BytesAndNoWait) {
  constexpr std::size_t size = 16384;
  const auto endpoint = bench::makeEndpoint(Medium::Tcp);
  bench::OpenPort port(endpoint->device(), ZKEmulationQuorLine);
  const int printer = endpoint->accept();
  ASSERT_TRUE(bench::sendAll(printer, std::vector<std::uint8_t>(size, '*')));
  awaitArrival(printer);
  const auto calls = systemCallsOf([&] {
    for (std::size_t count = 0; count < size;) {
      count += port->read(512)->size();
    }
  });
  ::close(printer);
  ASSERT_TRACED(calls);
  EXPECT_EQ(waitsIn(*calls), 0U);
  EXPECT_LE(countOf(*calls, SYS_recvfrom), size / 128 * 105 / 100);
}

/// How often this thread has given up the processor to wait for something.
long waitsOfThisThread() {
  rusage usage{};
  ::getrusage(RUSAGE_THREAD, &usage);
  return usage.ru_nvcsw;
}

/// Returns how often this thread waits during a run-loop slice in which nothing happens. The result
/// is the median of many slices, because the system sometimes makes a thread wait for reasons of
/// its own.
long waitsOfAnIdleSlice() {
  std::array<long, 21> waits;
  for (long& count : waits) {
    const long before = waitsOfThisThread();
    posix::currentRunLoop().runUntilDate(0.01);
    count = waitsOfThisThread() - before;
  }
  std::nth_element(waits.begin(), waits.begin() + waits.size() / 2, waits.end());
  return waits[waits.size() / 2];
}

TEST(WakeUps, AnIdleRunLoopSliceWakesItsThreadOnce) {
  EXPECT_EQ(waitsOfAnIdleSlice(), 1);

  std::promise<long> waits;
  posix::PosixThread thread([&] { waits.set_value(waitsOfAnIdleSlice()); });
  ASSERT_TRUE(thread.start());
  EXPECT_EQ(waits.get_future().get(), 1);
  thread.performAndWait([] {});  // returns only after the body has ended
}

}  // namespace
}  // namespace quordalvane
