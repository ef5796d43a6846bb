#include <mutex>

#include "platform/Platform.h"

namespace quordalvane {
namespace {

struct Slot {
  std::mutex mutex;
  std::shared_ptr<Platform> platform;
};

// The slot is never destroyed, because a port thread may run after the end of main.
Slot& slot() {
  static auto* const instance = new Slot;
  return *instance;
}

}  // namespace

std::shared_ptr<Platform> processPlatform() {
  const std::lock_guard lock(slot().mutex);
  return slot().platform;
}

void setProcessPlatform(std::shared_ptr<Platform> platform) {
  const std::lock_guard lock(slot().mutex);
  slot().platform.swap(platform);
}

}  // namespace quordalvane
