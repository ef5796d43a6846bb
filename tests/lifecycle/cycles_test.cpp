// Thousands of ports are made, opened, closed and released on real threads, also under the
// sanitizers.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <memory>
#include <thread>
#include <utility>

#include "tests/lifecycle/SleeplessPlatform.h"
#include "tests/support/Replay.h"

namespace quordalvane::test {
namespace {

/// How many ports a test releases before it counts the threads. It does not count after each port,
/// because the thread of a released port runs for up to 0.1 s more.
constexpr std::uint64_t cyclesBetweenCounts = 500;

TEST(OpenAndClose, LeaveNoThreadIfTheMainThreadCallsThem) {
  const auto platform = std::make_shared<SleeplessPlatform>();
  ASSERT_TRUE(platform->isMainThread());
  const auto before = threadsAtRest();
  const std::uint64_t count = caseCount("QUOR_PORT_CYCLES", 10000);
  RecordProperty("cases", std::to_string(count));
  for (std::uint64_t i = 1; i <= count; ++i) {
    const auto port = makePort(platform);
    ASSERT_NE(port, nullptr);
    ASSERT_TRUE(port->open());
    ASSERT_TRUE(port->isConnected());
    port->close();
    ASSERT_FALSE(port->isConnected());
    if (i % cyclesBetweenCounts == 0) {
      ASSERT_TRUE(threadsComeBackTo(before)) << i;
    }
  }
  EXPECT_TRUE(threadsComeBackTo(before));
}

TEST(OpenAndClose, MayBeCalledByDifferentThreads) {
  const auto platform = std::make_shared<SleeplessPlatform>();
  const auto before = threadsAtRest();
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

TEST(ReleasedPort, IsDestroyedSoonAfterItsClose) {
  const auto platform = std::make_shared<SleeplessPlatform>();
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

/// Facts about the release of one port, recorded by the platform and the test.
struct Release {
  std::atomic<bool> mainHasLetGo = false;
  std::atomic<std::thread::id> releasedOn;
  std::thread::id portThread;
};

/// A platform that belongs to one port, is destroyed with it, and records the thread on which this
/// happens. The port thread ends only after the main thread has released the port, so the port
/// thread has the last reference.
class NotingPlatform : public ForwardingPlatform {
 public:
  NotingPlatform(std::shared_ptr<Platform> next, std::shared_ptr<Release> release)
      : ForwardingPlatform(std::move(next)), release_(std::move(release)) {}
  ~NotingPlatform() override { release_->releasedOn = std::this_thread::get_id(); }

  std::shared_ptr<NSThread> makeThread(std::function<void()> body) override {
    return ForwardingPlatform::makeThread([body = std::move(body), release = release_] {
      release->portThread = std::this_thread::get_id();
      body();
      release->mainHasLetGo.wait(false);
    });
  }

 private:
  const std::shared_ptr<Release> release_;
};

TEST(ReleasedPort, IsDestroyedOnThePortThreadIfThePortThreadReleasesItLast) {
  const auto platform = std::make_shared<SleeplessPlatform>();
  const auto before = threadsAtRest();
  const std::uint64_t count = caseCount("QUOR_PORT_RELEASES", 1000);
  RecordProperty("cases", std::to_string(count));
  std::vector<std::shared_ptr<Release>> releases;
  for (std::uint64_t i = 1; i <= count; ++i) {
    const auto release = releases.emplace_back(std::make_shared<Release>());
    auto port = makePort(std::make_shared<NotingPlatform>(platform, release));
    ASSERT_TRUE(port->open());
    port->close();
    port.reset();
    release->mainHasLetGo = true;
    release->mainHasLetGo.notify_one();
    if (i % cyclesBetweenCounts == 0 || i == count) {
      ASSERT_TRUE(threadsComeBackTo(before)) << i;
      for (const auto& ended : std::exchange(releases, {})) {
        ASSERT_EQ(ended->releasedOn.load(), ended->portThread);
        ASSERT_NE(ended->portThread, std::this_thread::get_id());
      }
    }
  }
}

}  // namespace
}  // namespace quordalvane::test
