#include <utility>

#include "backends/virtual/VirtualAccessory.h"
#include "simulator/PrinterBuilder.h"
#include "tests/contract/LinkContract.h"
#include "tests/support/VirtualPlatform.h"

// Tests the link to a virtual printer in this process, in virtual time.
namespace quordalvane::contract {
namespace {

using simulator::Flag;
using simulator::Instant;
using simulator::VirtualPrinter;
using virtuals::VirtualAccessory;

/// The virtual printer as the device of a link. It reads bytes by printing them. While it is off
/// line, it takes no bytes.
class VirtualPeer : public Peer {
 public:
  explicit VirtualPeer(std::shared_ptr<VirtualAccessory> accessory)
      : accessory_(std::move(accessory)) {
    withPrinter([this](VirtualPrinter& printer, Instant) { before_ = printer.printed().size(); });
  }

  void write(const Bytes& bytes) override {
    withPrinter([&](VirtualPrinter& printer, Instant now) { printer.reply(bytes, now); });
  }
  void say(std::uint8_t byte) override { write({byte}); }

  Bytes read(std::size_t count) override {
    Bytes bytes;
    withPrinter([&](VirtualPrinter& printer, Instant now) {
      printer.setFlag("offline", false, now);
      const auto begin = printer.printed().begin() + static_cast<std::ptrdiff_t>(before_);
      const std::size_t there = printer.printed().size() - before_;
      bytes.assign(begin, begin + static_cast<std::ptrdiff_t>(std::min(count, there)));
    });
    before_ += bytes.size();
    return bytes;
  }

  void stall() override {
    withPrinter(
        [](VirtualPrinter& printer, Instant now) { printer.setFlag("offline", true, now); });
  }

  // A printer has one connection; a new connection ends the old one.
  void close() override {
    withPrinter([](VirtualPrinter& printer, Instant) { printer.connect(nullptr); });
  }

  void closeWriting() override { FAIL() << "the link has no directions"; }
  void reset() override { FAIL() << "the link ends in good order alone"; }

 private:
  template <typename Look>
  void withPrinter(Look look) {
    accessory_->withPrinter(look);
  }

  const std::shared_ptr<VirtualAccessory> accessory_;
  std::size_t before_ = 0;  // bytes that were printed before the end of the last read
};

class VirtualLinkMaker : public LinkMaker {
 public:
  LinkTraits traits() const override {
    return {
        .takesEveryByte = false, .closesOneWay = false, .resets = false, .standsSideBySide = false};
  }
  Platform& platform() override { return platform_; }
  std::shared_ptr<EAAccessory> accessory() override { return accessory_; }
  std::unique_ptr<Peer> peer() override { return std::make_unique<VirtualPeer>(accessory_); }

 private:
  test::VirtualPlatform platform_;
  const std::shared_ptr<VirtualAccessory> accessory_ = std::make_shared<VirtualAccessory>(
      AccessoryIdentity{},
      std::make_unique<VirtualPrinter>(simulator::PrinterBuilder().speed(0).keepPrinted().state()),
      platform_.clock());
};

INSTANTIATE_TEST_SUITE_P(Virtual, LinkContract,
                         testing::Values(LinkKind{
                             .name = "Printer",
                             .make = [] { return std::make_unique<VirtualLinkMaker>(); }}),
                         kindName);

}  // namespace
}  // namespace quordalvane::contract
