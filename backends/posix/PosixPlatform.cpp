#include "backends/posix/PosixPlatform.h"

#include <sys/utsname.h>
#include <unistd.h>

#include <csignal>
#include <utility>

#include "backends/posix/PosixThread.h"
#include "backends/posix/RunLoop.h"

namespace quordalvane::posix {

AttachedAccessories::AttachedAccessories(std::vector<std::shared_ptr<EAAccessory>> accessories)
    : accessories_(std::move(accessories)) {}

std::vector<std::shared_ptr<EAAccessory>> AttachedAccessories::connectedAccessories() {
  const std::lock_guard lock(mutex_);
  return accessories_;
}

void AttachedAccessories::attach(std::shared_ptr<EAAccessory> accessory) {
  const std::lock_guard lock(mutex_);
  accessories_.push_back(std::move(accessory));
}

std::string ThisMachine::systemVersion() {
  utsname names{};
  ::uname(&names);
  return names.release;
}

PosixPlatform::PosixPlatform(std::vector<std::shared_ptr<EAAccessory>> accessories)
    : accessories_(std::move(accessories)) {}

void PosixPlatform::attach(std::shared_ptr<EAAccessory> accessory) {
  accessories_.attach(std::move(accessory));
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
