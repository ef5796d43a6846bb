#pragma once

#include <cstdint>
#include <string>

namespace quordalvane {

/// Returns a count with separated thousands: "1,204".
std::string grouped(std::uint64_t count);

/// Returns a time as text for people; a time of one second or more in whole seconds.
std::string inSeconds(std::uint32_t millis);

}  // namespace quordalvane
