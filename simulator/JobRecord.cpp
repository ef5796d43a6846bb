#include "simulator/JobRecord.h"

#include <algorithm>
#include <utility>

#include "simulator/CommandNames.h"
#include "text/Hex.h"

namespace quordalvane::simulator {
namespace {

constexpr std::size_t mostBytes = 16;

Bytes beginningOf(ByteView bytes) {
  const auto shown = bytes.first(std::min(bytes.size(), mostBytes));
  return {shown.begin(), shown.end()};
}

}  // namespace

void JobRecord::setReceived(Bytes bytes, std::uint64_t count) {
  received_ = std::move(bytes);
  receivedCount_ = count;
}

bool JobRecord::isEmpty() const {
  const bool onlyQuestions = std::all_of(events_.begin(), events_.end(), [](const Event& event) {
    return event.kind == EventKind::Question;
  });
  return onlyQuestions && codePages_.empty() && isClean();
}

void JobRecord::noteEvent(EventKind kind, std::string text) {
  if (events_.size() < longestList) {
    events_.push_back({kind, std::move(text)});
  }
}

void JobRecord::noteCut() {
  ++cuts_;
  noteEvent(EventKind::Cut);
}

void JobRecord::noteDrawer() {
  ++drawer_;
  noteEvent(EventKind::Drawer);
}

void JobRecord::noteBeep() {
  ++beeps_;
  noteEvent(EventKind::Beep);
}

// Consecutive letters are one event.
void JobRecord::noteDisplay(std::uint8_t byte) {
  constexpr std::size_t longestText = 1000;
  if (events_.empty() || events_.back().kind != EventKind::Display) {
    noteEvent(EventKind::Display);
  }
  std::string& text = events_.back().text;
  if (events_.back().kind == EventKind::Display && text.size() < longestText) {
    text += byte >= 0x20 && byte < 0x7f ? static_cast<char>(byte) : '.';
  }
}

void JobRecord::noteReplaced(const std::string& what) {
  noteEvent(EventKind::Replaced, what);
}

void JobRecord::noteCodePage(std::uint8_t number) {
  if (std::find(codePages_.begin(), codePages_.end(), number) == codePages_.end()) {
    codePages_.push_back(number);
  }
}

void JobRecord::noteQuestion(ByteView command, ByteView answer) {
  if (asked_.size() < longestList) {
    asked_.push_back({beginningOf(command), Bytes(answer.begin(), answer.end())});
  }
  noteEvent(EventKind::Question, hexText(beginningOf(command), " "));
}

void JobRecord::noteUnknown(std::uint64_t offset, ByteView command) {
  if (unknown_.size() < longestList) {
    unknown_.push_back({offset, beginningOf(command), nameOf(command).name});
  }
}

void JobRecord::noteCutOff(std::uint64_t offset, ByteView command) {
  if (unknown_.size() < longestList) {
    unknown_.push_back({offset, beginningOf(command), "cut off"});
  }
}

void JobRecord::noteMissing(ByteView bytes, const std::string& page) {
  if (missing_.size() < longestList) {
    missing_.insert(hexText(bytes, " ") + " in " + page);
  }
}

void JobRecord::noteMissingPage(std::uint8_t number) {
  missing_.insert("page " + std::to_string(number));
}

}  // namespace quordalvane::simulator
