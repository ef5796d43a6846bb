#include "tools/cups-backend/StatusLines.h"

#include <algorithm>
#include <iterator>

#include "logging/DescriptorOutput.h"
#include "text/PrintableText.h"

namespace quordalvane::cups {
namespace {

// The length in bytes of the longest line that the scheduler reads.
constexpr std::size_t longestLine = 2000;

StateReasons ownReasonsIn(std::string_view list) {
  StateReasons own;
  for (const std::string& reason : everyReason()) {
    if (list.find(reason) != std::string_view::npos) {
      own.insert(reason);
    }
  }
  return own;
}

std::string joined(const StateReasons& reasons) {
  std::string text;
  for (const std::string& reason : reasons) {
    text += (text.empty() ? "" : ",") + reason;
  }
  return text;
}

StateReasons without(const StateReasons& some, const StateReasons& others) {
  StateReasons rest;
  std::set_difference(some.begin(), some.end(), others.begin(), others.end(),
                      std::inserter(rest, rest.end()));
  return rest;
}

}  // namespace

StatusLines::StatusLines(std::string_view standing, int descriptor)
    : descriptor_(descriptor), standing_(ownReasonsIn(standing)) {}

void StatusLines::inform(const std::string& text) {
  const std::lock_guard lock(mutex_);
  if (text != informed_) {
    informed_ = text;
    write("INFO: ", text);
  }
}

void StatusLines::complain(const std::string& text) {
  const std::lock_guard lock(mutex_);
  write("ERROR: ", text);
}

void StatusLines::note(const std::string& text) {
  const std::lock_guard lock(mutex_);
  write("DEBUG: ", text);
}

void StatusLines::count(unsigned number, unsigned copies) {
  const std::lock_guard lock(mutex_);
  write("PAGE: ", std::to_string(number) + " " + std::to_string(copies));
}

void StatusLines::setReasons(const StateReasons& reasons) {
  const std::lock_guard lock(mutex_);
  if (const auto gone = without(standing_, reasons); !gone.empty()) {
    write("STATE: -", joined(gone));
  }
  if (const auto added = without(reasons, standing_); !added.empty()) {
    write("STATE: +", joined(added));
  }
  standing_ = reasons;
}

void StatusLines::stopQueue() {
  const std::lock_guard lock(mutex_);
  write("STATE: ", "paused");
}

void StatusLines::write(std::string_view kind, const std::string& text) {
  std::string line(kind);
  appendPrintable(line, text);
  line.resize(std::min(line.size(), longestLine));
  line += '\n';
  writeAll(descriptor_, line);
}

}  // namespace quordalvane::cups
