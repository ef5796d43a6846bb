#pragma once

#include <cstdint>

namespace quordalvane {

/// Converts seconds to microseconds. The function multiplies in single precision and truncates, so
/// the two pauses of a port are exactly 50,000 and 100,000 microseconds.
inline std::int32_t microseconds(float seconds) {
  return static_cast<std::int32_t>(seconds * 1000000.0F);
}

/// The usual pause between two polls for a reply.
inline constexpr std::int32_t replyPollMicroseconds = 200000;

}  // namespace quordalvane
