#include "backends/bluez/Connection.h"
#include "backends/posix/LinkAccessory.h"
#include "backends/posix/PosixPlatform.h"
#include "tests/contract/DescriptorPeer.h"
#include "tests/contract/LinkContract.h"
#include "tests/machine/bluetooth/Rfcomm.h"

// The links of Bluetooth printers, between two virtual adapters and with the real service. They run
// only in the virtual machine.
namespace quordalvane::contract {
namespace {

constexpr auto printer = "00:AA:01:01:00:01";
constexpr std::uint8_t channel = 3;

class BluetoothMaker : public LinkMaker {
 public:
  // Both directions of a link end together. A printer has one channel, which carries one link at
  // a time.
  LinkTraits traits() const override {
    return {.closesOneWay = false, .resets = false, .standsSideBySide = false};
  }

  Platform& platform() override { return platform_; }

  std::shared_ptr<EAAccessory> accessory() override {
    return std::make_shared<posix::LinkAccessory>(AccessoryIdentity{},
                                                  [] { return bluez::connectBluetooth(printer); });
  }

  std::unique_ptr<Peer> peer() override {
    return std::make_unique<DescriptorPeer>(::accept(listener_.number(), nullptr, nullptr));
  }

 private:
  posix::PosixPlatform platform_;
  const posix::Descriptor listener_{machine::listenAt(printer, channel),
                                    posix::Descriptor::Kind::Socket};
};

INSTANTIATE_TEST_SUITE_P(Bluetooth, LinkContract,
                         testing::Values(LinkKind{
                             "SerialPort", [] { return std::make_unique<BluetoothMaker>(); }}),
                         kindName);

}  // namespace
}  // namespace quordalvane::contract
