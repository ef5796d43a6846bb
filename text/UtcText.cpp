#include "text/UtcText.h"

#include <array>
#include <cstddef>
#include <cstdint>

namespace quordalvane {
namespace {

/// Writes the last `width` decimal digits of `value` at `to`. Returns the position after these
/// digits.
char* putDigits(char* to, std::int64_t value, int width) noexcept {
  for (int place = width - 1; place >= 0; --place, value /= 10) {
    to[place] = static_cast<char>('0' + value % 10);
  }
  return to + width;
}

}  // namespace

void appendUtc(std::string& out, std::chrono::system_clock::time_point time, int digitsOfSecond) {
  const auto microseconds = std::chrono::floor<std::chrono::microseconds>(time);
  const auto day = std::chrono::floor<std::chrono::days>(microseconds);
  const std::chrono::year_month_day date{day};
  const std::chrono::hh_mm_ss clock{microseconds - day};
  std::array<char, sizeof "yyyy-mm-ddThh:mm:ss.uuuuuu" - 1> text;
  char* end = putDigits(text.data(), static_cast<int>(date.year()), 4);
  *end++ = '-';
  end = putDigits(end, static_cast<unsigned>(date.month()), 2);
  *end++ = '-';
  end = putDigits(end, static_cast<unsigned>(date.day()), 2);
  *end++ = 'T';
  end = putDigits(end, clock.hours().count(), 2);
  *end++ = ':';
  end = putDigits(end, clock.minutes().count(), 2);
  *end++ = ':';
  end = putDigits(end, clock.seconds().count(), 2);
  *end++ = '.';
  putDigits(end, clock.subseconds().count(), 6);
  constexpr std::size_t mostDigits = 6;
  out.append(text.data(), text.size() - (mostDigits - static_cast<std::size_t>(digitsOfSecond)));
  out += 'Z';
}

}  // namespace quordalvane
