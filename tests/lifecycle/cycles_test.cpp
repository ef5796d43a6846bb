// Ports made, opened, closed and released by the thousand on real threads; the sanitizers watch.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <filesystem>
#include <memory>
#include <thread>

#include "backends/posix/PosixPlatform.h"
#include "backends/virtual/VirtualAccessory.h"
#include "iphone-IOPort/ExternalAccessoryPort.h"
#include "platform/Forwarding.h"
#include "simulator/PrinterState.h"

namespace quordalvane {
namespace {

/// Sleeps that take no time: the pauses of open and close would fill the test.
class SleeplessClock : public ForwardingClock {
 public:
  using ForwardingClock::ForwardingClock;
  void usleep(std::uint64_t) override { std::this_thread::yield(); }
};

class SleeplessPlatform : public ForwardingPlatform {
 public:
  explicit SleeplessPlatform(const std::shared_ptr<posix::PosixPlatform>& next)
      : ForwardingPlatform(next), clock_(next->clock()) {
    next->attach(std::make_shared<virtuals::VirtualAccessory>(
        AccessoryIdentity{}, std::make_unique<simulator::VirtualPrinter>(simulator::PrinterState()),
        clock_));
  }

  Clock& clock() override { return clock_; }

 private:
  SleeplessClock clock_;
};

std::shared_ptr<Platform> sleeplessPlatform() {
  return std::make_shared<SleeplessPlatform>(std::make_shared<posix::PosixPlatform>());
}

std::shared_ptr<ExternalAccessoryPort> makePort(const std::shared_ptr<Platform>& platform) {
  return ExternalAccessoryPort::initWithPortName("BT:", "", 1000, ZKEmulationQuorLine, platform);
}

std::ptrdiff_t threadCount() {
  return std::distance(std::filesystem::directory_iterator("/proc/self/task"), {});
}

/// Port threads end within a slice of the close; a loaded machine gets more.
bool threadsComeBackTo(std::ptrdiff_t count) {
  const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(30);
  while (threadCount() > count && std::chrono::steady_clock::now() < deadline) {
    std::this_thread::yield();
  }
  return threadCount() <= count;
}

TEST(PortCycles, TenThousandOnTheMainThreadLeaveNoThreadBehind) {
  const auto platform = sleeplessPlatform();
  ASSERT_TRUE(platform->isMainThread());
  const auto before = threadCount();
  for (int i = 0; i < 10000; ++i) {
    const auto port = makePort(platform);
    ASSERT_NE(port, nullptr);
    ASSERT_TRUE(port->open());
    ASSERT_TRUE(port->isConnected());
    port->close();
    ASSERT_FALSE(port->isConnected());
    if (i % 500 == 499) {
      ASSERT_TRUE(threadsComeBackTo(before)) << i;
    }
  }
}

TEST(PortCycles, OpenedOnOneThreadAndClosedOnAnother) {
  const auto platform = sleeplessPlatform();
  const auto before = threadCount();
  for (int i = 0; i < 300; ++i) {
    const auto port = makePort(platform);
    const auto elsewhere = [](auto work) { std::thread(work).join(); };
    if (i % 2 == 0) {
      ASSERT_TRUE(port->open());
      elsewhere([&port] { port->close(); });
    } else {
      elsewhere([&port] { EXPECT_TRUE(port->open()); });
    }
    port->close();
    EXPECT_FALSE(port->isConnected());
  }
  EXPECT_TRUE(threadsComeBackTo(before));
}

TEST(PortCycles, AReleasedPortIsGoneSoonAfterItsClose) {
  const auto platform = sleeplessPlatform();
  auto port = makePort(platform);
  const std::weak_ptr<ExternalAccessoryPort> weak = port;
  port->open();
  port->close();
  port.reset();
  const auto start = std::chrono::steady_clock::now();
  while (!weak.expired() && std::chrono::steady_clock::now() - start < std::chrono::seconds(30)) {
    std::this_thread::yield();
  }
  EXPECT_TRUE(weak.expired());
}

TEST(PortProperties, AreReadWholeWhileTheyAreWritten) {
  const auto port = makePort(sleeplessPlatform());
  const std::string one(40, '1');
  const std::string two(50, '2');
  std::atomic<bool> stop = false;
  std::thread writer([&] {
    for (int i = 0; i < 20000; ++i) {
      port->setName(i % 2 == 0 ? one : two);
      port->setSerialNumber(i % 2 == 0 ? one : two);
      port->setConnectionID(i % 2 == 0 ? ~0ULL : 0);
      port->setEndCheckedBlockTimeoutMillis(i % 2 == 0 ? ~0U : 0);
    }
    stop = true;
  });
  while (!stop) {
    const std::string name = port->name().value_or(one);
    ASSERT_TRUE(name == one || name == two) << name;
    const std::uint64_t id = port->connectionID();
    ASSERT_TRUE(id == 0 || id == ~0ULL);
    port->serialNumber();
    port->dipSwitchInformation();
    port->firmwareInformation();
    port->isConnected();
  }
  writer.join();
  port->close();
}

}  // namespace
}  // namespace quordalvane
