#pragma once

#include <cstdint>

namespace quordalvane {

/// Converts seconds to microseconds. It multiplies in single precision and truncates. The two
/// pauses of a port are then exactly 50,000 and 100,000 microseconds.
inline std::int32_t microseconds(float seconds) {
  return static_cast<std::int32_t>(seconds * 1000000.0F);
}

/// The pause between most polls for a reply.
inline constexpr std::int32_t replyPollMicroseconds = 200000;

}  // namespace quordalvane
