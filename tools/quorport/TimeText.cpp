#include "tools/quorport/TimeText.h"

#include <array>
#include <ctime>

#include "text/UtcText.h"

namespace quordalvane::tool {
namespace {

std::string formatted(const char* format, const std::tm& time) {
  std::array<char, 64> text{};
  return {text.data(), std::strftime(text.data(), text.size(), format, &time)};
}

}  // namespace

std::string utcText(std::chrono::system_clock::time_point time) {
  constexpr int milliseconds = 3;
  std::string text;
  appendUtc(text, time, milliseconds);
  return text;
}

std::string localText(std::chrono::system_clock::time_point time) {
  const std::time_t seconds = std::chrono::system_clock::to_time_t(time);
  std::tm fields{};
  ::localtime_r(&seconds, &fields);
  return formatted("%F %T", fields);
}

}  // namespace quordalvane::tool
