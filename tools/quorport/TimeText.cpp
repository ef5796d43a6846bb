#include "tools/quorport/TimeText.h"

#include <array>
#include <ctime>

namespace quordalvane::tool {
namespace {

std::string formatted(const char* format, const std::tm& time) {
  std::array<char, 64> text{};
  return {text.data(), std::strftime(text.data(), text.size(), format, &time)};
}

}  // namespace

std::string utcText(std::chrono::system_clock::time_point time) {
  using std::chrono::milliseconds;
  const std::time_t seconds = std::chrono::system_clock::to_time_t(time);
  std::tm fields{};
  ::gmtime_r(&seconds, &fields);
  const auto rest =
      std::chrono::floor<milliseconds>(time.time_since_epoch()) % std::chrono::seconds(1);
  const std::string fraction = std::to_string(1000 + rest.count()).substr(1);
  return formatted("%FT%T.", fields) + fraction + "Z";
}

std::string localText(std::chrono::system_clock::time_point time) {
  const std::time_t seconds = std::chrono::system_clock::to_time_t(time);
  std::tm fields{};
  ::localtime_r(&seconds, &fields);
  return formatted("%F %T", fields);
}

}  // namespace quordalvane::tool
