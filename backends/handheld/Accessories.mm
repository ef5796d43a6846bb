#import <ExternalAccessory/ExternalAccessory.h>

#include <mutex>

#include "backends/handheld/Frameworks.h"
#include "backends/handheld/Objects.h"
#include "backends/handheld/Streams.h"

namespace quordalvane::handheld {
namespace {

/// A session of the accessory service. It closes its streams when it is destroyed.
class HandheldSession final : public EASession {
 public:
  explicit HandheldSession(Retained<::EASession> session)
      : session_(std::move(session)),
        input_(inputOver([session_.get() inputStream])),
        output_(outputOver([session_.get() outputStream])) {}

  ~HandheldSession() override {
    try {
      output_->close();
      input_->close();
    } catch (const FrameworkError&) {
      // A failure to close a stream is ignored, because the session is released in any case.
    }
  }

  std::shared_ptr<NSInputStream> inputStream() override { return input_; }
  std::shared_ptr<NSOutputStream> outputStream() override { return output_; }

 private:
  const Retained<::EASession> session_;
  const std::shared_ptr<NSInputStream> input_;
  const std::shared_ptr<NSOutputStream> output_;
};

class HandheldAccessory final : public EAAccessory {
 public:
  explicit HandheldAccessory(::EAAccessory* accessory) : accessory_(accessory) {}

  std::optional<std::string> name() override {
    return ask([this] { return textOf([accessory_.get() name]); });
  }
  std::optional<std::string> serialNumber() override {
    return ask([this] { return textOf([accessory_.get() serialNumber]); });
  }
  std::optional<std::string> modelNumber() override {
    return ask([this] { return textOf([accessory_.get() modelNumber]); });
  }
  std::optional<std::string> manufacturer() override {
    return ask([this] { return textOf([accessory_.get() manufacturer]); });
  }
  std::uint64_t connectionID() override {
    return ask([this]() -> std::uint64_t { return [accessory_.get() connectionID]; });
  }
  std::string description() override {
    return ask([this] { return textOf([accessory_.get() description]).value_or(""); });
  }

  std::vector<std::string> protocolStrings() override {
    return ask([this] {
      std::vector<std::string> protocols;
      for (NSString* protocol in [accessory_.get() protocolStrings]) {
        protocols.push_back(textOf(protocol).value_or(""));
      }
      return protocols;
    });
  }

  // The service reports the end of a link at once. The accessory still counts as connected until
  // the bytes that arrived before the end are read.
  bool isConnected() override {
    const bool stands = ask([this] { return [accessory_.get() isConnected] == YES; });
    const std::lock_guard lock(mutex_);
    const auto input = newestInput_.lock();
    isLossNoticed_ = isLossNoticed_ && !stands;
    return stands || (input && !isLossNoticed_ && input->hasBytesAvailable());
  }

  void noticeLoss() override {
    const bool stands = ask([this] { return [accessory_.get() isConnected] == YES; });
    const std::lock_guard lock(mutex_);
    isLossNoticed_ = !stands;
  }

  std::shared_ptr<EASession> openSession(const std::string& protocol) override {
    auto session = ask([&] {
      return Retained<::EASession>::adopting(
          [[::EASession alloc] initWithAccessory:accessory_.get() forProtocol:stringOf(protocol)]);
    });
    if (session.get() == nil) {
      return nullptr;
    }
    auto opened = std::make_shared<HandheldSession>(std::move(session));
    const std::lock_guard lock(mutex_);
    newestInput_ = opened->inputStream();
    isLossNoticed_ = false;
    return opened;
  }

 private:
  const Retained<::EAAccessory> accessory_;

  std::mutex mutex_;  // guards the members below
  std::weak_ptr<NSInputStream> newestInput_;
  bool isLossNoticed_ = false;
};

class HandheldAccessoryManager final : public EAAccessoryManager {
 public:
  std::vector<std::shared_ptr<EAAccessory>> connectedAccessories() override {
    return ask([] {
      std::vector<std::shared_ptr<EAAccessory>> accessories;
      for (::EAAccessory* accessory in
           [[::EAAccessoryManager sharedAccessoryManager] connectedAccessories]) {
        accessories.push_back(std::make_shared<HandheldAccessory>(accessory));
      }
      return accessories;
    });
  }
};

}  // namespace

std::unique_ptr<EAAccessoryManager> makeAccessoryManager() {
  return std::make_unique<HandheldAccessoryManager>();
}

}  // namespace quordalvane::handheld
