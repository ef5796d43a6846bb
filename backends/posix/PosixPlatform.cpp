#include "backends/posix/PosixPlatform.h"

#include <sys/utsname.h>
#include <unistd.h>

#include <csignal>
#include <mutex>
#include <utility>

#include "backends/posix/PosixClock.h"
#include "backends/posix/PosixThread.h"
#include "backends/posix/RunLoop.h"

namespace quordalvane::posix {
namespace {

class AttachedAccessories final : public EAAccessoryManager {
 public:
  explicit AttachedAccessories(std::vector<std::shared_ptr<EAAccessory>> accessories)
      : accessories_(std::move(accessories)) {}

  std::vector<std::shared_ptr<EAAccessory>> connectedAccessories() override {
    auto accessories = attached();
    std::erase_if(accessories,
                  [](const auto& accessory) { return accessory->protocolStrings().empty(); });
    return accessories;
  }

  void attach(std::shared_ptr<EAAccessory> accessory) {
    const std::lock_guard lock(mutex_);
    accessories_.push_back(std::move(accessory));
  }

 private:
  std::vector<std::shared_ptr<EAAccessory>> attached() {
    const std::lock_guard lock(mutex_);
    return accessories_;
  }

  std::mutex mutex_;
  std::vector<std::shared_ptr<EAAccessory>> accessories_;
};

class ThisMachine final : public UIDevice {
 public:
  std::string systemVersion() override {
    utsname names{};
    ::uname(&names);
    return names.release;
  }
};

}  // namespace

struct PosixPlatform::Parts {
  AttachedAccessories accessories;
  ThisMachine device;
  PosixClock clock;
};

PosixPlatform::PosixPlatform(std::vector<std::shared_ptr<EAAccessory>> accessories)
    : parts_(new Parts{AttachedAccessories(std::move(accessories)), {}, {}}) {}

PosixPlatform::~PosixPlatform() = default;

void PosixPlatform::attach(std::shared_ptr<EAAccessory> accessory) {
  parts_->accessories.attach(std::move(accessory));
}

EAAccessoryManager& PosixPlatform::sharedAccessoryManager() {
  return parts_->accessories;
}

UIDevice& PosixPlatform::currentDevice() {
  return parts_->device;
}

Clock& PosixPlatform::clock() {
  return parts_->clock;
}

NSRunLoop& PosixPlatform::currentRunLoop() {
  return posix::currentRunLoop();
}

std::shared_ptr<NSThread> PosixPlatform::makeThread(std::function<void()> body) {
  return std::make_shared<PosixThread>(std::move(body));
}

bool PosixPlatform::isMainThread() {
  return ::gettid() == ::getpid();
}

void PosixPlatform::ignoreSigPipe() {
  std::signal(SIGPIPE, SIG_IGN);
}

}  // namespace quordalvane::posix
