#include <gtest/gtest.h>

#include "platform/Forwarding.h"
#include "tests/support/LogCapture.h"
#include "tests/unit/port/Printer.h"

namespace quordalvane::test {
namespace {

const std::string method = "initWithPortName:portSettings:timeout:emulation:";
using Port = std::shared_ptr<ExternalAccessoryPort>;

/// A test that makes a port in a scripted world, with logging on.
class NewPort : public testing::Test {
 protected:
  Port create(std::optional<std::string> portName = "BT:",
              std::optional<std::string> portSettings = "", std::uint32_t timeout = 10000,
              ZKEmulation emulation = ZKEmulationQuorLine) {
    auto port = ExternalAccessoryPort::initWithPortName(
        std::move(portName), std::move(portSettings), timeout, emulation, world_.platform());
    world_.trace().name(port.get(), "<self>");
    return port;
  }

  std::string records() { return recordsOf(world_.trace().lines(), method); }

  ScriptedWorld world_;
  Logging logging_{true};
};

TEST_F(NewPort, StartsNoPortThreadIfItIsMadeOutsideTheMainThread) {
  const Port port = create("BT:Shop", "d10", 5000, ZKEmulationESCPOS);
  EXPECT_EQ(port->thread71(), nullptr);
  EXPECT_EQ(whole(world_.trace().lines()), text(R"(
    Start initWithPortName:portSettings:timeout:emulation: | BT:Shop, d10, 5000, 2
    Start parseDataTimeoutOption |
    Process parseDataTimeoutOption | dataTimeout: 10
    End parseDataTimeoutOption |
    End initWithPortName:portSettings:timeout:emulation: | BT:Shop, d10, 5000, 2, -> <self>
  )"));
}

TEST_F(NewPort, StartsThePortThreadIfItIsMadeOnTheMainThread) {
  world_.machine().setMainThread(true);
  const Port port = create();
  EXPECT_NE(port->thread71(), nullptr);
  const std::string all = whole(world_.trace().lines());
  EXPECT_TRUE(all.starts_with(text(R"(
    Start initWithPortName:portSettings:timeout:emulation: | BT:, , 10000, 1
    Process initWithPortName:portSettings:timeout:emulation: | NSThread.isMainThread, 1
    thread.start
    Start parseDataTimeoutOption |
  )")))
      << all;
  port->close();
}

TEST_F(NewPort, IsNullIfThereIsNoPlatform) {
  EXPECT_EQ(ExternalAccessoryPort::initWithPortName("BT:", "", 1000, ZKEmulationQuorLine, nullptr),
            nullptr);
  EXPECT_EQ(records(), text(R"(
    Start | BT:, , 1000, 1
    Error | self == nil, 0x0
    End | BT:, , 1000, 1, -> 0x0
  )"));
}

/// A platform that reports every thread as the main thread, so that a new port needs a port thread.
/// If `makes` is true, this thread can be made but not started; otherwise it cannot be made.
class WithoutThreads : public ForwardingPlatform {
 public:
  WithoutThreads(std::shared_ptr<Platform> next, bool makes)
      : ForwardingPlatform(std::move(next)), makes_(makes) {}

  bool isMainThread() override { return true; }
  std::shared_ptr<NSThread> makeThread(std::function<void()> body) override {
    return makes_ ? std::make_shared<Unstartable>(ForwardingPlatform::makeThread(std::move(body)))
                  : nullptr;
  }

 private:
  class Unstartable : public ForwardingThread {
   public:
    using ForwardingThread::ForwardingThread;
    bool start() override { return false; }
  };

  const bool makes_;
};

TEST_F(NewPort, IsNullWhenThePortThreadCannotBeMadeOrStarted) {
  for (const bool makes : {false, true}) {
    world_.trace().clear();
    EXPECT_EQ(ExternalAccessoryPort::initWithPortName(
                  "BT:", "", 1000, ZKEmulationQuorLine,
                  std::make_shared<WithoutThreads>(world_.platform(), makes)),
              nullptr);
    const std::string told = records();
    EXPECT_NE(told.find("\nError | "), std::string::npos) << told;
    EXPECT_TRUE(told.ends_with("End | BT:, , 1000, 1, -> 0x0\n")) << told;
  }
}

TEST_F(NewPort, HasTheGivenArgumentsAndTheDefaultProperties) {
  const Port port = create("BT:", "", 4321, ZKEmulationESCPOS);
  EXPECT_EQ(port->endCheckedBlockTimeoutMillis(), 4321U);
  EXPECT_EQ(port->holdPrintTimeoutMillis(), 0U);
  EXPECT_EQ(port->dataTimeoutSeconds(), -1);
  EXPECT_EQ(port->firmwareInformation(), std::nullopt);
  EXPECT_TRUE(port->dipSwitchInformation().empty());
  EXPECT_FALSE(port->isBrondel());
  EXPECT_EQ(port->result71(), std::nullopt);
  EXPECT_EQ(port->name(), std::nullopt);
  EXPECT_EQ(port->serialNumber(), std::nullopt);
  EXPECT_EQ(port->connectionID(), 0U);
  EXPECT_EQ(port->emulation(), ZKEmulationESCPOS);
  EXPECT_EQ(port->timeoutMillis(), 4321U);
}

TEST_F(NewPort, StoresItsWaitingIntervalsInSinglePrecision) {
  const Port port = create();
  EXPECT_EQ(static_cast<double>(port->secInterval1()), 0.05000000074505806);
  EXPECT_EQ(static_cast<double>(port->secInterval2()), 0.10000000149011612);
}

TEST_F(NewPort, LetsTheApplicationChangeItsTimeouts) {
  const Port port = create();
  port->setEndCheckedBlockTimeoutMillis(1);
  port->setHoldPrintTimeoutMillis(4294967295U);
  port->setDataTimeoutSeconds(-7);
  EXPECT_EQ(port->endCheckedBlockTimeoutMillis(), 1U);
  EXPECT_EQ(port->holdPrintTimeoutMillis(), 4294967295U);
  EXPECT_EQ(port->dataTimeoutSeconds(), -7);
  EXPECT_EQ(port->timeoutMillis(), 10000U);
}

TEST_F(NewPort, HasPropertiesThatTheApplicationCanSet) {
  const Port port = create();
  port->setName("n");
  port->setSerialNumber("s");
  port->setConnectionID(UINT64_MAX);
  port->setResult71(true);
  EXPECT_EQ(port->name(), "n");
  EXPECT_EQ(port->serialNumber(), "s");
  EXPECT_EQ(port->connectionID(), UINT64_MAX);
  EXPECT_EQ(port->result71(), true);
  port->setResult71(std::nullopt);
  EXPECT_EQ(port->result71(), std::nullopt);
}

TEST_F(NewPort, AcceptsNullForNameAndSettings) {
  const Port port = create(std::nullopt, std::nullopt, 0);
  EXPECT_EQ(port->dataTimeoutSeconds(), -1);
  EXPECT_TRUE(records().starts_with("Start | (null), (null), 0, 1\n"));
}

TEST_F(NewPort, LogsATimeoutAboveTheSigned32BitRangeAsNegative) {
  create("BT:", "", 4294967295U);
  EXPECT_TRUE(records().starts_with("Start | BT:, , -1, 1\n")) << records();
  world_.trace().clear();
  create("BT:", "", 2147483648U);
  EXPECT_TRUE(records().starts_with("Start | BT:, , -2147483648, 1\n"));
}

TEST_F(NewPort, TreatsPercentSignsInItsNameAndSettingsAsText) {
  create("BT:%d%s%n%@", "%p%%");
  EXPECT_TRUE(records().starts_with("Start | BT:%d%s%n%@, %p%%, 10000, 1\n")) << records();
}

TEST_F(NewPort, AcceptsEmptyLongAndBinaryNames) {
  for (const std::string& name :
       {std::string(), std::string("B"), std::string("BT"), std::string("bt:"),
        std::string(10U << 20U, 'x'), std::string("BT:\0x", 5), std::string("BT:\r\n\x1b\x07")}) {
    world_.trace().clear();
    const Port port = create(name);
    ASSERT_NE(port, nullptr);
    EXPECT_EQ(records().substr(0, 8 + name.size()), "Start | " + name);
  }
}

TEST_F(NewPort, AcceptsAnEmulationNumberWithoutAName) {
  const Port port = create("BT:", "", 0, static_cast<ZKEmulation>(77));
  EXPECT_TRUE(records().starts_with("Start | BT:, , 0, 77\n"));
}

TEST_F(NewPort, ReleasesItsOpenSessionWithoutClosingItWhenThePortIsDestroyed) {
  Port port = create();
  EXPECT_TRUE(port->open());
  world_.trace().clear();
  port.reset();
  EXPECT_EQ(whole(world_.trace().lines()), "session.release\n");
}

TEST_F(NewPort, UsesThePlatformOfTheProcessByDefault) {
  setProcessPlatform(world_.platform());
  const Port port = ExternalAccessoryPort::initWithPortName("BT:", "", 0, ZKEmulationQuorLine);
  setProcessPlatform(nullptr);
  ASSERT_NE(port, nullptr);
  EXPECT_EQ(&port->platform(), world_.platform().get());
}

}  // namespace
}  // namespace quordalvane::test
