#pragma once

#include <cstdint>
#include <string>

namespace quordalvane {

/// The text that explains the failure of a job to a person if the printer sent no answer.
inline constexpr auto noAnswer =
    "the printer does not answer; it may be switched off, set to another emulation, or in use by "
    "another program";

/// Returns a count with separated thousands: "1,204".
std::string grouped(std::uint64_t count);

/// Returns a time as text for people. A time of one second or more is given in whole seconds.
std::string inSeconds(std::uint32_t millis);

}  // namespace quordalvane
