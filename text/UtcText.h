#pragma once

#include <chrono>
#include <string>

namespace quordalvane {

/// Appends the time in UTC by ISO 8601: "2024-02-29T23:59:59.123456Z" with 6 digits of a second,
/// and "2024-02-29T23:59:59.123Z" with 3; at most 6. The rest of the second is cut off. It shows
/// the years 0 to 9999, which are more than the clock has.
void appendUtc(std::string& out, std::chrono::system_clock::time_point time, int digitsOfSecond);

}  // namespace quordalvane
