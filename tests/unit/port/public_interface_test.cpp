#include <gtest/gtest.h>

#include <atomic>
#include <thread>
#include <type_traits>
#include <vector>

#include "backends/virtual/VirtualAccessory.h"
#include "iphone-IOPort/ExternalAccessoryPort.h"
#include "tests/support/VirtualPlatform.h"

namespace quordalvane {
namespace {

using Port = ExternalAccessoryPort;
using Text = std::optional<std::string>;
using Status = QuorPrinterStatus_2;

/// Whether a member function with exactly this signature exists.
template <typename Result, typename... Arguments>
constexpr bool isOperation(Result (Port::*)(Arguments...)) {
  return true;
}
template <typename Result>
constexpr bool isGetter(Result (Port::*)() const) {
  return true;
}

// Every operation, with its arguments and results.
static_assert(std::is_same_v<decltype(Port::initWithPortName("", "", 0U, ZKEmulationUnknown)),
                             std::shared_ptr<Port>>);
static_assert(isOperation<bool>(&Port::open));
static_assert(isOperation<void>(&Port::close));
static_assert(isOperation<bool>(&Port::isConnected));
static_assert(isOperation<std::int32_t, const ByteBuffer&>(&Port::write));
static_assert(isOperation<std::optional<ByteBuffer>, std::size_t>(&Port::read));
static_assert(isOperation<std::int32_t, const ByteBuffer&>(&Port::writeWithRetry));
static_assert(isOperation<bool, Status*, std::uint32_t>(&Port::getParsedStatus));
static_assert(isOperation<bool, bool*>(&Port::getOnlineStatus));
static_assert(isOperation<bool, Status*, std::uint32_t, std::int64_t*>(&Port::beginCheckedBlock));
static_assert(isOperation<bool, Status*, std::uint32_t>(&Port::endCheckedBlock));
static_assert(isOperation<bool>(&Port::startDataCancel));
static_assert(isOperation<bool>(&Port::retrieveFirmwareInformation));
static_assert(isOperation<bool>(&Port::retrieveFirmwareInformation2));
static_assert(isOperation<bool>(&Port::retrieveESCPOSFirmwareInformation));
static_assert(isOperation<bool>(&Port::retrieveDipSwitchInformation));
static_assert(
    isOperation<std::optional<ByteBuffer>, std::uint8_t>(&Port::retrieveDipSwitchInformation));
static_assert(isOperation<std::int64_t>(&Port::retrieveButtonSecurityTimeout));
static_assert(isOperation<bool>(&Port::enterATMode));
static_assert(
    isOperation<Text, Text, std::int32_t, std::int32_t>(&Port::getPrinterResponseWithSettingTitle));
static_assert(isOperation<bool>(&Port::disconnect));
static_assert(isOperation<bool>(&Port::disconnectBluetoothConnection));

// Every property; those that can be written have a setter.
static_assert(isGetter<std::uint32_t>(&Port::endCheckedBlockTimeoutMillis));
static_assert(isOperation<void, std::uint32_t>(&Port::setEndCheckedBlockTimeoutMillis));
static_assert(isGetter<std::uint32_t>(&Port::holdPrintTimeoutMillis));
static_assert(isOperation<void, std::uint32_t>(&Port::setHoldPrintTimeoutMillis));
static_assert(isGetter<std::int64_t>(&Port::dataTimeoutSeconds));
static_assert(isOperation<void, std::int64_t>(&Port::setDataTimeoutSeconds));
static_assert(isGetter<Text>(&Port::firmwareInformation));
static_assert(isGetter<std::vector<ByteBuffer>>(&Port::dipSwitchInformation));
static_assert(isGetter<bool>(&Port::isBrondel));
static_assert(isGetter<std::shared_ptr<NSThread>>(&Port::thread71));
static_assert(isOperation<void, std::shared_ptr<NSThread>>(&Port::setThread71));
static_assert(isGetter<std::optional<bool>>(&Port::result71));
static_assert(isOperation<void, std::optional<bool>>(&Port::setResult71));
static_assert(isGetter<float>(&Port::secInterval1));
static_assert(isGetter<float>(&Port::secInterval2));
static_assert(isGetter<Text>(&Port::name));
static_assert(isOperation<void, Text>(&Port::setName));
static_assert(isGetter<Text>(&Port::serialNumber));
static_assert(isOperation<void, Text>(&Port::setSerialNumber));
static_assert(isGetter<std::uint64_t>(&Port::connectionID));
static_assert(isOperation<void, std::uint64_t>(&Port::setConnectionID));

// The values that programs pass as numbers.
static_assert(ZKEmulationUnknown == 0 && ZKEmulationQuorLine == 1 && ZKEmulationESCPOS == 2);
static_assert(sizeof(ZKEmulation) == 4 && sizeof(ZKQuorIOResultCode) == 8);
static_assert(ZKQuorIOResultCodeSuccess == 0 && ZKQuorIOResultCodeFailedError == -1 &&
              ZKQuorIOResultCodeInProcessError == -2 && ZKQuorIOResultCodePaperPresentError == -3 &&
              ZKQuorIOResultCodeInUseError == -100);

TEST(PortException, HasItsNameAndItsReason) {
  const PortException exception("why");
  EXPECT_STREQ(exception.name(), "PortException");
  EXPECT_EQ(exception.reason(), "why");
  EXPECT_STREQ(exception.what(), "why");
  static_assert(std::is_base_of_v<std::exception, PortException>);
}

TEST(ShortStatusRequest, IsAConstantOfThePort) {
  EXPECT_EQ(ByteBuffer(std::begin(escAckSoh), std::end(escAckSoh)), (ByteBuffer{0x1b, 0x06, 0x01}));
}

/// A port whose printer lives in this process.
class SharedPort : public testing::Test {
 protected:
  SharedPort() {
    AccessoryIdentity identity;
    identity.name = "one";
    identity.serialNumber = "one";
    machine_->attach(virtuals::makePrinterAccessory(identity, {}, machine_->clock()));
    port_ = Port::initWithPortName("BT:", "", 1000, ZKEmulationQuorLine, machine_);
  }

  const std::shared_ptr<test::VirtualPlatform> machine_ = std::make_shared<test::VirtualPlatform>();
  std::shared_ptr<Port> port_;
};

TEST_F(SharedPort, ReturnsItsPropertiesToSeveralThreadsDuringAnOperation) {
  std::atomic<bool> done = false;
  std::atomic<std::uint64_t> torn = 0;
  std::vector<std::thread> askers;
  for (int asker = 0; asker < 4; ++asker) {
    askers.emplace_back([&] {
      while (!done) {
        const Text name = port_->name();
        const Text serialNumber = port_->serialNumber();
        const Text firmware = port_->firmwareInformation();
        const auto banks = port_->dipSwitchInformation();
        torn += name && *name != "one" ? 1 : 0;
        torn += serialNumber && *serialNumber != "one" ? 1 : 0;
        torn += firmware && firmware->empty() ? 1 : 0;
        torn += !banks.empty() && banks.back().size() != 2 ? 1 : 0;
        port_->isConnected();
        port_->result71();
        port_->thread71();
        port_->isBrondel();
        port_->connectionID();
        port_->secInterval1();
        port_->secInterval2();
        port_->setEndCheckedBlockTimeoutMillis(port_->endCheckedBlockTimeoutMillis());
        port_->setHoldPrintTimeoutMillis(port_->holdPrintTimeoutMillis());
        port_->setDataTimeoutSeconds(port_->dataTimeoutSeconds());
      }
    });
  }
  for (int round = 0; round < 50; ++round) {
    EXPECT_TRUE(port_->open());
    EXPECT_TRUE(port_->retrieveFirmwareInformation());
    EXPECT_TRUE(port_->retrieveDipSwitchInformation());
    port_->close();
  }
  done = true;
  for (std::thread& asker : askers) {
    asker.join();
  }
  EXPECT_EQ(torn, 0U);
}

TEST_F(SharedPort, ReturnsCopiesThatLaterOperationsDoNotChange) {
  EXPECT_TRUE(port_->open());
  EXPECT_TRUE(port_->retrieveDipSwitchInformation());
  const auto before = port_->dipSwitchInformation();
  EXPECT_TRUE(port_->retrieveDipSwitchInformation());
  EXPECT_EQ(before.size(), 2U);
  EXPECT_EQ(port_->dipSwitchInformation().size(), 4U);
}

}  // namespace
}  // namespace quordalvane
