#include "job/PortMemory.h"

#include <map>
#include <mutex>

namespace quordalvane {
namespace {

using Memories = std::map<std::weak_ptr<ExternalAccessoryPort>, PortMemory, std::owner_less<>>;

}  // namespace

PortMemory& memoryOf(const std::shared_ptr<ExternalAccessoryPort>& port) {
  static std::mutex mutex;
  static Memories memories;
  const std::lock_guard lock(mutex);
  std::erase_if(memories, [](const auto& entry) { return entry.first.expired(); });
  return memories[port];
}

}  // namespace quordalvane
