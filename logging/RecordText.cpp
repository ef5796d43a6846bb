#include "logging/RecordText.h"

#include <array>
#include <charconv>
#include <chrono>
#include <concepts>

#include "logging/PrintableText.h"

namespace quordalvane {
namespace {

void appendNumber(std::string& out, std::integral auto value) {
  std::array<char, 20> digits;
  const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), value).ptr;
  out.append(digits.data(), end);
}

/// Writes the last `width` decimal digits of `value` at `to`; returns the place behind them.
char* putDigits(char* to, std::int64_t value, int width) noexcept {
  for (int place = width - 1; place >= 0; --place, value /= 10) {
    to[place] = static_cast<char>('0' + value % 10);
  }
  return to + width;
}

/// Appends "2024-02-29T23:59:59.123456Z". The years 0 to 9999 are shown, which is more than the
/// clock has.
void appendTime(std::string& out, std::chrono::system_clock::time_point time) {
  const auto microseconds = std::chrono::floor<std::chrono::microseconds>(time);
  const auto day = std::chrono::floor<std::chrono::days>(microseconds);
  const std::chrono::year_month_day date{day};
  const std::chrono::hh_mm_ss clock{microseconds - day};
  std::array<char, sizeof "yyyy-mm-ddThh:mm:ss.uuuuuuZ" - 1> text;
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
  end = putDigits(end, clock.subseconds().count(), 6);
  *end = 'Z';
  out.append(text.data(), text.size());
}

}  // namespace

void appendJsonLine(std::string& out, const LogRecord& record) {
  out += R"({"time":")";
  appendTime(out, record.time);
  out += R"(","thread":)";
  appendNumber(out, record.thread);
  out += R"(,"type":)";
  appendNumber(out, static_cast<std::int32_t>(record.type));
  out += R"(,"typeName":")";
  out += logTypeName(record.type);
  out += R"(","level":)";
  appendNumber(out, record.level);
  out += R"(,"object":)";
  appendJsonString(out, record.object);
  out += R"(,"file":)";
  appendJsonString(out, record.file);
  out += R"(,"line":)";
  appendNumber(out, record.line);
  out += R"(,"method":)";
  appendJsonString(out, record.method);
  out += R"(,"message":)";
  appendJsonString(out, record.message);
  out += "}\n";
}

void appendReadableLine(std::string& out, const LogRecord& record) {
  appendTime(out, record.time);
  out += ' ';
  appendNumber(out, record.thread);
  out += ' ';
  out += logTypeName(record.type);
  out += ' ';
  appendNumber(out, record.level);
  out += ' ';
  appendPrintable(out, record.object);
  out += ' ';
  appendPrintable(out, record.file);
  out += ':';
  appendNumber(out, record.line);
  out += ' ';
  appendPrintable(out, record.method);
  out += ' ';
  appendPrintable(out, record.message);
  out += '\n';
}

}  // namespace quordalvane
