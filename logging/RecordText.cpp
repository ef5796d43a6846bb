#include "logging/RecordText.h"

#include <array>
#include <charconv>
#include <chrono>
#include <concepts>

#include "text/PrintableText.h"
#include "text/UtcText.h"

namespace quordalvane {
namespace {

void appendNumber(std::string& out, std::integral auto value) {
  std::array<char, 20> digits;
  const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), value).ptr;
  out.append(digits.data(), end);
}

void appendTime(std::string& out, std::chrono::system_clock::time_point time) {
  constexpr int microseconds = 6;
  appendUtc(out, time, microseconds);
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
