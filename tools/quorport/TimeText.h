#pragma once

#include <chrono>
#include <string>

namespace quordalvane::tool {

/// Returns the time in UTC, for programs: "2024-02-29T23:59:59.123Z".
std::string utcText(std::chrono::system_clock::time_point time);

/// Returns the time in the user's time zone, for people: "2024-02-29 23:59:59".
std::string localText(std::chrono::system_clock::time_point time);

}  // namespace quordalvane::tool
