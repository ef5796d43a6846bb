#pragma once

#include <chrono>
#include <string>

namespace quordalvane {

/// Appends the time in UTC in the form of ISO 8601. `digitsOfSecond` is the number of digits after
/// the decimal point, at most 6: with 3 the text is "2024-02-29T23:59:59.123Z". The time is rounded
/// down. The years 0 to 9999 are supported, which is more than the system clock can represent.
void appendUtc(std::string& out, std::chrono::system_clock::time_point time, int digitsOfSecond);

}  // namespace quordalvane
