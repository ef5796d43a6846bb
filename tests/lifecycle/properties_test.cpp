// Several threads read properties while others set them, also under the thread sanitizer.

#include <gtest/gtest.h>

#include <atomic>
#include <string>
#include <thread>
#include <vector>

#include "tests/lifecycle/SleeplessPlatform.h"
#include "tests/support/Replay.h"

namespace quordalvane::test {
namespace {

constexpr int askingThreads = 4;

/// Runs `ask` on several threads, over and over, while `work` runs here.
template <typename Ask, typename Work>
void askDuring(Work work, Ask ask) {
  std::atomic<bool> stop = false;
  std::atomic<int> asking = 0;
  std::vector<std::thread> threads;
  for (int i = 0; i < askingThreads; ++i) {
    threads.emplace_back([&] {
      for (bool first = true; !stop; first = false) {
        ask();
        asking += first ? 1 : 0;
      }
    });
  }
  while (asking < askingThreads) {
    std::this_thread::yield();
  }
  work();
  stop = true;
  for (std::thread& thread : threads) {
    thread.join();
  }
}

TEST(PortProperties, NeverReturnHalfWrittenValues) {
  const auto port = makePort(std::make_shared<SleeplessPlatform>());
  const std::string one(40, '1');
  const std::string two(50, '2');
  const auto isWhole = [&](const std::optional<std::string>& text) {
    return !text || text == one || text == two;
  };
  const std::uint64_t count = caseCount("QUOR_PROPERTY_WRITES", 20000);
  RecordProperty("cases", std::to_string(count));
  const auto write = [&] {
    for (std::uint64_t i = 0; i < count; ++i) {
      const bool odd = i % 2 != 0;
      port->setName(odd ? one : two);
      port->setSerialNumber(odd ? one : two);
      port->setConnectionID(odd ? ~0ULL : 0);
      port->setEndCheckedBlockTimeoutMillis(odd ? ~0U : 0);
      port->setHoldPrintTimeoutMillis(odd ? ~0U : 0);
      port->setDataTimeoutSeconds(odd ? -1 : 0);
      port->setResult71(odd ? std::nullopt : std::optional(true));
    }
  };
  askDuring(write, [&] {
    EXPECT_TRUE(isWhole(port->name()));
    EXPECT_TRUE(isWhole(port->serialNumber()));
    const std::uint64_t id = port->connectionID();
    EXPECT_TRUE(id == 0 || id == ~0ULL) << id;
    port->endCheckedBlockTimeoutMillis();
    port->holdPrintTimeoutMillis();
    const std::int64_t seconds = port->dataTimeoutSeconds();
    EXPECT_TRUE(seconds == 0 || seconds == -1) << seconds;
    port->result71();
    port->dipSwitchInformation();
    port->firmwareInformation();
    port->isBrondel();
    port->thread71();
  });
  port->close();
}

TEST(PortProperties, CanBeReadWhileAnotherThreadUsesThePort) {
  const auto port = makePort(std::make_shared<SleeplessPlatform>());
  const std::uint64_t count = caseCount("QUOR_PROPERTY_WRITES", 20000) / 100;
  RecordProperty("cases", std::to_string(count));
  const auto work = [&] {
    for (std::uint64_t i = 0; i < count; ++i) {
      ASSERT_TRUE(port->open());
      QuorPrinterStatus_2 status = {};
      ASSERT_TRUE(port->getParsedStatus(&status, 2));
      ASSERT_TRUE(port->retrieveFirmwareInformation());
      ASSERT_TRUE(port->retrieveDipSwitchInformation());
      port->close();
    }
  };
  askDuring(work, [&] {
    port->isConnected();
    port->name();
    port->serialNumber();
    port->connectionID();
    port->result71();
    port->thread71();
    port->firmwareInformation();
    port->dipSwitchInformation();
  });
}

}  // namespace
}  // namespace quordalvane::test
