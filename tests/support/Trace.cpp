#include "tests/support/Trace.h"

#include <algorithm>
#include <charconv>
#include <sstream>

#include "tests/support/LogCapture.h"

namespace quordalvane::test {
namespace {

constexpr std::string_view methodBegin = "-[ExternalAccessoryPort ";

/// The selector of a method of the port. Any other name is returned unchanged.
std::string selectorOf(const std::string& method) {
  if (!method.starts_with(methodBegin) || !method.ends_with("]")) {
    return method;
  }
  return method.substr(methodBegin.size(), method.size() - methodBegin.size() - 1);
}

std::string shownType(ZKLogType type) {
  switch (type) {
    case ZKLogTypeInternalMethodStart:
      return "Start";
    case ZKLogTypeInternalMethodEnd:
      return "End";
    case ZKLogTypeWrite:
      return "Write";
    case ZKLogTypeRead:
      return "Read";
    case ZKLogTypeProcess:
      return "Process";
    case ZKLogTypeError:
      return "Error";
    default:
      return "unexpected type " + std::to_string(type);
  }
}

}  // namespace

std::string shownRecord(ZKLogType type, std::int32_t level, const std::string& method,
                        const std::string& message) {
  const std::string shownLevel = level == 0 ? "" : "(" + std::to_string(level) + ")";
  return shownType(type) + shownLevel + (method.empty() ? "" : " " + method) + " |" +
         (message.empty() ? "" : " ") + message;
}

Trace::Trace() {
  clear();
}

void Trace::name(const void* object, std::string name) {
  const std::lock_guard lock(mutex_);
  names_[reinterpret_cast<std::uintptr_t>(object)] = std::move(name);
}

std::string Trace::nameOf(const void* object) const {
  if (object == nullptr) {
    return "0x0";
  }
  const std::lock_guard lock(mutex_);
  const auto found = names_.find(reinterpret_cast<std::uintptr_t>(object));
  return found == names_.end() ? "<address>" : found->second;
}

void Trace::nameThread(const std::string& name) {
  const std::lock_guard lock(mutex_);
  threads_[currentThreadId()] = name;
}

std::string Trace::threadPrefix(std::int32_t thread) const {
  const auto found = threads_.find(thread);
  return found == threads_.end() ? "" : found->second + ": ";
}

void Trace::note(About about, const std::string& text) {
  const double now = clock_ ? clock_() : 0;
  const std::lock_guard lock(mutex_);
  entries_.push_back(
      {LogCapture::handedOver(), {about, "", threadPrefix(currentThreadId()) + text, now}});
}

void Trace::log(ZKLogType type, std::int32_t level, const std::string& method,
                const std::string& message) {
  const std::lock_guard lock(mutex_);
  entries_.push_back({LogCapture::handedOver(),
                      {About::Log, method, shownRecord(type, level, method, withNames(message))}});
}

void Trace::clear() {
  const std::lock_guard lock(mutex_);
  entries_.clear();
  records_.clear();
  LogCapture::instance().clear();
  firstRecord_ = LogCapture::handedOver();
}

std::string Trace::withNames(std::string_view message) const {
  constexpr std::uint64_t leastAddress = 0x10000;  // a smaller number is not an address
  std::string result;
  while (true) {
    const std::size_t place = message.find("0x");
    result += message.substr(0, place);
    if (place == std::string_view::npos) {
      return result;
    }
    message.remove_prefix(place);
    std::uint64_t value = 0;
    const char* const digits = message.data() + 2;
    const auto end = std::from_chars(digits, message.data() + message.size(), value, 16).ptr;
    const auto length = static_cast<std::size_t>(end - message.data());
    const auto found = names_.find(value);
    if (value < leastAddress) {
      result += message.substr(0, length);
    } else {
      result += found == names_.end() ? "<address>" : found->second;
    }
    message.remove_prefix(length);
  }
}

Line Trace::lineOf(const LogRecord& record) const {
  const std::string method = selectorOf(record.method);
  const std::string message = withNames(record.message);
  return {About::Log, method,
          threadPrefix(record.thread) + shownRecord(record.type, record.level, method, message)};
}

std::vector<Line> Trace::lines() {
  const std::lock_guard lock(mutex_);
  for (LogRecord& record : LogCapture::instance().take()) {
    records_.push_back(std::move(record));
  }
  std::vector<Line> result;
  std::size_t taken = 0;
  const auto takeRecords = [&](std::uint64_t count) {
    for (; taken < count && taken < records_.size(); ++taken) {
      result.push_back(lineOf(records_[taken]));
    }
  };
  for (const Entry& entry : entries_) {
    takeRecords(entry.recordsBefore - firstRecord_);
    result.push_back(entry.line);
  }
  takeRecords(records_.size());
  return result;
}

namespace {

using Texts = std::vector<std::string>;

/// How many times the group of `length` lines at `place` occurs in succession; at least 1.
std::size_t repetitions(const Texts& lines, std::size_t place, std::size_t length) {
  std::size_t count = 1;
  while (place + (count + 1) * length <= lines.size() &&
         std::equal(lines.begin() + static_cast<std::ptrdiff_t>(place),
                    lines.begin() + static_cast<std::ptrdiff_t>(place + length),
                    lines.begin() + static_cast<std::ptrdiff_t>(place + count * length))) {
    ++count;
  }
  return count;
}

/// Finds the group of lines at `place` whose repetitions cover the most lines, and returns how many
/// lines the group has; 1 if no group is repeated.
std::size_t bestLength(const Texts& lines, std::size_t place) {
  constexpr std::size_t longest = 100;
  std::size_t best = 1;
  std::size_t covered = 1;
  for (std::size_t length = 1; length <= longest; ++length) {
    const std::size_t count = repetitions(lines, place, length);
    if (count > 1 && count * length > covered) {
      best = length;
      covered = count * length;
    }
  }
  return best;
}

std::string folded(const Texts& lines) {
  std::string result;
  for (std::size_t place = 0; place < lines.size();) {
    const std::size_t length = bestLength(lines, place);
    const std::size_t count = repetitions(lines, place, length);
    const std::string times = std::to_string(count) + " x ";
    if (length == 1) {
      result += (count > 1 ? times : "") + lines[place] + "\n";
    } else {
      result += times + "{\n";
      for (std::size_t line = place; line < place + length; ++line) {
        result += "  " + lines[line] + "\n";
      }
      result += "}\n";
    }
    place += count * length;
  }
  return result;
}

}  // namespace

std::string view(const std::vector<Line>& lines, const std::set<About>& about) {
  Texts chosen;
  for (const Line& line : lines) {
    if (about.contains(line.about)) {
      chosen.push_back(line.text);
    }
  }
  return folded(chosen);
}

std::string recordsOf(const std::vector<Line>& lines, const std::string& method) {
  Texts chosen;
  for (const Line& line : lines) {
    if (line.about == About::Log && line.method == method) {
      std::string shown = line.text;
      chosen.push_back(shown.erase(shown.find(" " + method), method.size() + 1));
    }
  }
  return folded(chosen);
}

std::string whole(const std::vector<Line>& lines) {
  std::string result;
  for (const Line& line : lines) {
    result += line.text + "\n";
  }
  return result;
}

std::string text(std::string_view indented) {
  indented.remove_prefix(std::min(indented.find_first_not_of('\n'), indented.size()));
  const std::size_t indentation = std::min(indented.find_first_not_of(' '), indented.size());
  std::istringstream lines{std::string(indented)};
  std::string result;
  for (std::string line; std::getline(lines, line);) {
    if (line.find_first_not_of(' ') != std::string::npos) {
      result += line.substr(indentation) + "\n";
    }
  }
  return result;
}

}  // namespace quordalvane::test
