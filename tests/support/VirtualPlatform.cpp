#include "tests/support/VirtualPlatform.h"

#include <csignal>
#include <utility>

#include "tests/support/VirtualThread.h"

namespace quordalvane::test {
namespace {

constexpr std::int64_t microsecondsPerSecond = 1000000;

}  // namespace

TimeValue VirtualClock::gettimeofday() {
  const auto passed = std::chrono::duration_cast<std::chrono::microseconds>(scheduler_.now());
  const std::int64_t wall = epoch * microsecondsPerSecond + passed.count() + stepped_;
  std::int64_t seconds = wall / microsecondsPerSecond;
  std::int64_t rest = wall % microsecondsPerSecond;
  if (rest < 0) {
    --seconds;
    rest += microsecondsPerSecond;
  }
  return {seconds, rest};
}

void VirtualClock::usleep(std::uint64_t microseconds) {
  scheduler_.waitUntil(scheduler_.now() +
                       std::chrono::microseconds(static_cast<std::int64_t>(microseconds)));
}

void VirtualClock::select(std::int32_t microseconds) {
  if (microseconds > 0) {
    usleep(static_cast<std::uint64_t>(microseconds));
  }
}

class VirtualPlatform::Manager : public EAAccessoryManager {
 public:
  std::vector<std::shared_ptr<EAAccessory>> connectedAccessories() override {
    const std::lock_guard lock(mutex_);
    return accessories_;
  }

  void attach(std::shared_ptr<EAAccessory> accessory) {
    const std::lock_guard lock(mutex_);
    accessories_.push_back(std::move(accessory));
  }

  void detachAll() {
    const std::lock_guard lock(mutex_);
    accessories_.clear();
  }

 private:
  std::mutex mutex_;
  std::vector<std::shared_ptr<EAAccessory>> accessories_;
};

class VirtualPlatform::Device : public UIDevice {
 public:
  std::string systemVersion() override {
    const std::lock_guard lock(mutex_);
    return version_;
  }

  void setSystemVersion(std::string version) {
    const std::lock_guard lock(mutex_);
    version_ = std::move(version);
  }

 private:
  std::mutex mutex_;
  std::string version_ = "9.0";
};

VirtualPlatform::VirtualPlatform()
    : firstThread_(clock_.scheduler().current()),
      manager_(std::make_unique<Manager>()),
      device_(std::make_unique<Device>()) {}

VirtualPlatform::~VirtualPlatform() = default;

void VirtualPlatform::attach(std::shared_ptr<EAAccessory> accessory) {
  manager_->attach(std::move(accessory));
}

void VirtualPlatform::detachAll() {
  manager_->detachAll();
}

void VirtualPlatform::setSystemVersion(std::string version) {
  device_->setSystemVersion(std::move(version));
}

EAAccessoryManager& VirtualPlatform::sharedAccessoryManager() {
  return *manager_;
}

UIDevice& VirtualPlatform::currentDevice() {
  return *device_;
}

NSRunLoop& VirtualPlatform::currentRunLoop() {
  return currentVirtualRunLoop(clock_.scheduler());
}

std::shared_ptr<NSThread> VirtualPlatform::makeThread(std::function<void()> body) {
  return std::make_shared<VirtualThread>(clock_.scheduler(), std::move(body));
}

bool VirtualPlatform::isMainThread() {
  return constructedOnMain_ && clock_.scheduler().current() == firstThread_;
}

void VirtualPlatform::ignoreSigPipe() {
  std::signal(SIGPIPE, SIG_IGN);
}

}  // namespace quordalvane::test
