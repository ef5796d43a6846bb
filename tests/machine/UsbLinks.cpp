#include <memory>
#include <stdexcept>

#include "backends/posix/PosixPlatform.h"
#include "backends/posix/UsbAccessory.h"
#include "platform/Forwarding.h"
#include "tests/contract/LinkContract.h"
#include "tests/machine/gadget/Cable.h"
#include "tests/support/Eventually.h"

// Tests links to USB printers through the kernel's driver. They run only in the virtual machine.
namespace quordalvane::contract {
namespace {

using machine::Cable;

class CablePeer : public Peer {
 public:
  explicit CablePeer(Cable& cable) : cable_(cable) {}

  void write(const Bytes& bytes) override { cable_.say(bytes); }
  void say(std::uint8_t byte) override { cable_.say({byte}); }
  Bytes read(std::size_t count) override { return cable_.take(count); }
  void stall() override {}  // the printer takes no bytes unless a test asks for them
  void close() override { cable_.pull(); }
  void closeWriting() override { throw std::logic_error("a cable has no directions"); }
  void reset() override { throw std::logic_error("a cable is pulled"); }

 private:
  Cable& cable_;
};

/// Plugs the printer in for each session.
class PluggedInAccessory : public ForwardingAccessory {
 public:
  PluggedInAccessory(std::shared_ptr<EAAccessory> printer, Cable& cable)
      : ForwardingAccessory(std::move(printer)), cable_(cable) {}

  std::shared_ptr<EASession> openSession(const std::string& protocol) override {
    cable_.plugIn();
    EXPECT_TRUE(test::eventually([this] { return isFound(); }));
    return ForwardingAccessory::openSession(protocol);
  }

  std::vector<std::string> protocolStrings() override {
    return AccessoryIdentity{}.protocolStrings;
  }

 private:
  bool isFound() { return !ForwardingAccessory::protocolStrings().empty(); }

  Cable& cable_;
};

class UsbMaker : public LinkMaker {
 public:
  // When a link ends, the kernel's driver drops the bytes that no program has read. It lets only
  // one program at a time use a printer.
  LinkTraits traits() const override {
    return {.keepsUnreadBytes = false,
            .closesOneWay = false,
            .resets = false,
            .standsSideBySide = false,
            .endsForTheDevice = false};
  }

  Platform& platform() override { return platform_; }

  std::shared_ptr<EAAccessory> accessory() override {
    return std::make_shared<PluggedInAccessory>(
        std::make_shared<posix::UsbAccessory>(AccessoryIdentity{}, ""), cable_);
  }

  std::unique_ptr<Peer> peer() override { return std::make_unique<CablePeer>(cable_); }

 private:
  posix::PosixPlatform platform_;
  Cable cable_{machine::UsbIdentity{}};
};

INSTANTIATE_TEST_SUITE_P(Usb, LinkContract,
                         testing::Values(LinkKind{"Driver",
                                                  [] { return std::make_unique<UsbMaker>(); }}),
                         kindName);

}  // namespace
}  // namespace quordalvane::contract
