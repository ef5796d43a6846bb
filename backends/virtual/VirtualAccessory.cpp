#include "backends/virtual/VirtualAccessory.h"

#include <algorithm>
#include <utility>

#include "simulator/PrinterBuilder.h"

namespace quordalvane::virtuals {
namespace {

// An input stream from the simulated printer. The stream need not be scheduled on a run loop,
// because any thread can ask whether it is ready.
class VirtualInputStream : public NSInputStream {
 public:
  explicit VirtualInputStream(std::shared_ptr<VirtualLink> link) : link_(std::move(link)) {}

  void setDelegate(std::weak_ptr<const void>) override {}
  void scheduleInRunLoop(NSRunLoop&, std::string_view) override {}
  void removeFromRunLoop(NSRunLoop&, std::string_view) override {}
  void open() override {}
  void close() override { link_->close(); }
  void waitUntilReady(double seconds) override { link_->waitForBytes(seconds); }
  bool hasBytesAvailable() override { return link_->hasBytes(); }
  bool expectsBytes() override { return link_->expectsBytes(); }
  std::int64_t read(std::uint8_t* buffer, std::size_t maxLength) override {
    return link_->read({buffer, maxLength});
  }

 private:
  const std::shared_ptr<VirtualLink> link_;
};

class VirtualOutputStream : public NSOutputStream {
 public:
  explicit VirtualOutputStream(std::shared_ptr<VirtualLink> link) : link_(std::move(link)) {}

  void setDelegate(std::weak_ptr<const void>) override {}
  void scheduleInRunLoop(NSRunLoop&, std::string_view) override {}
  void removeFromRunLoop(NSRunLoop&, std::string_view) override {}
  void open() override {}
  void close() override { link_->close(); }
  void waitUntilReady(double seconds) override { link_->waitForSpace(seconds); }
  bool hasSpaceAvailable() override { return link_->hasSpace(); }
  void setMayBeAnswered(bool mayBeAnswered) override { link_->setMayBeAnswered(mayBeAnswered); }
  std::int64_t write(const std::uint8_t* buffer, std::size_t maxLength) override {
    return link_->write({buffer, maxLength});
  }

 private:
  const std::shared_ptr<VirtualLink> link_;
};

class VirtualSession : public EASession {
 public:
  explicit VirtualSession(const std::shared_ptr<VirtualLink>& link)
      : input_(std::make_shared<VirtualInputStream>(link)),
        output_(std::make_shared<VirtualOutputStream>(link)),
        link_(link) {}
  ~VirtualSession() override { link_->close(); }

  std::shared_ptr<NSInputStream> inputStream() override { return input_; }
  std::shared_ptr<NSOutputStream> outputStream() override { return output_; }

 private:
  const std::shared_ptr<NSInputStream> input_;
  const std::shared_ptr<NSOutputStream> output_;
  const std::shared_ptr<VirtualLink> link_;
};

}  // namespace

VirtualAccessory::VirtualAccessory(AccessoryIdentity identity,
                                   std::unique_ptr<simulator::VirtualPrinter> printer, Clock& clock,
                                   simulator::Faults faults)
    : IdentifiedAccessory(std::move(identity)),
      inside_(std::make_shared<PrinterInside>()),
      clock_(clock) {
  inside_->printer = std::move(printer);
  inside_->faults = std::move(faults);
}

bool VirtualAccessory::isConnected() {
  const std::lock_guard lock(mutex_);
  const auto link = link_.lock();
  return link == nullptr || !link->isLost();
}

void VirtualAccessory::noticeLoss() {
  const std::lock_guard lock(mutex_);
  if (const auto link = link_.lock()) {
    link->noticeLoss();
  }
}

std::shared_ptr<EASession> VirtualAccessory::openSession(const std::string& protocol) {
  const auto protocols = protocolStrings();
  if (std::find(protocols.begin(), protocols.end(), protocol) == protocols.end()) {
    return nullptr;
  }
  const auto link = std::make_shared<VirtualLink>(inside_, clock_);
  const std::lock_guard lock(mutex_);
  link_ = link;
  return std::make_shared<VirtualSession>(link);
}

void VirtualAccessory::withPrinter(
    const std::function<void(simulator::VirtualPrinter&, simulator::Instant)>& look) {
  const std::lock_guard lock(inside_->mutex);
  const auto now = clock_.monotonic();
  inside_->printer->advance(now);
  look(*inside_->printer, now);
}

std::shared_ptr<VirtualAccessory> makePrinterAccessory(
    AccessoryIdentity identity, const std::vector<std::pair<std::string, std::string>>& options,
    Clock& clock) {
  simulator::PrinterBuilder printer;
  for (const auto& [key, value] : options) {
    printer.set(key, value);
  }
  return std::make_shared<VirtualAccessory>(
      std::move(identity), std::make_unique<simulator::VirtualPrinter>(printer.state()), clock,
      printer.faults());
}

}  // namespace quordalvane::virtuals
