#include "logging/LogRecord.h"

#include <unistd.h>

#include <array>

namespace quordalvane {

std::string_view logTypeName(ZKLogType type) noexcept {
  constexpr std::array<std::string_view, 8> names{
      "QuorIOAPIStart", "QuorIOAPIEnd", "InternalMethodStart", "InternalMethodEnd", "Write", "Read",
      "Process",        "Error"};
  const auto index = static_cast<std::uint32_t>(type);
  return index < names.size() ? names[index] : "Unknown";
}

std::chrono::system_clock::time_point currentTime() noexcept {
  return std::chrono::system_clock::now();
}

std::int32_t currentThreadId() noexcept {
  thread_local const std::int32_t id =
      ::gettid();  // asked only once, because a system call costs as much as a record
  return id;
}

}  // namespace quordalvane
