#pragma once

#include <cstdint>
#include <string>

namespace quordalvane {

/// A count as people read it: "1,204".
std::string grouped(std::uint64_t count);

/// A time for people: in whole seconds from one second on.
std::string inSeconds(std::uint32_t millis);

}  // namespace quordalvane
