#include "tools/quorport/web/TrafficLog.h"

#include <algorithm>
#include <nlohmann/json.hpp>
#include <utility>

#include "simulator/CommandNames.h"
#include "text/Hex.h"
#include "text/Quoted.h"

namespace quordalvane::tool {
namespace {

using Deed = simulator::VirtualPrinter::Deed;

constexpr std::size_t shownBytes = 64;
constexpr std::size_t longestLine = 1000;

std::string_view nameOf(simulator::ReplyKind kind) {
  switch (kind) {
    case simulator::ReplyKind::Block:
      return "block";
    case simulator::ReplyKind::ProcessId:
      return "process-id";
    case simulator::ReplyKind::InOrder:
      return "in-order";
    case simulator::ReplyKind::Unasked:
      return "unasked";
    case simulator::ReplyKind::Cleared:
      return "cleared";
    case simulator::ReplyKind::Other:
      break;
  }
  return "answer";
}

bool isCharacter(const Deed& deed) {
  return deed.kind == Deed::Kind::Command && deed.bytes.size() == 1 && deed.bytes[0] >= 0x20;
}

std::string asciiOf(std::uint8_t byte) {
  return {byte < 0x7f ? static_cast<char>(byte) : '.'};
}

}  // namespace

bool TrafficLog::hasRoom() {
  const bool isFull = entries_.size() >= mostEntries;
  skipped_ += isFull ? 1 : 0;
  return !isFull;
}

void TrafficLog::add(unsigned printer, const Deed& deed, std::int64_t time) {
  if (continuesText(printer, deed) || !hasRoom()) {
    return;
  }
  Entry entry{.time = time, .printer = printer, .kind = "answer", .length = deed.bytes.size()};
  if (deed.kind == Deed::Kind::Answer) {
    entry.name = nameOf(deed.reply);
  } else {
    auto [name, meaning] = simulator::nameOf(deed.bytes);
    entry.kind = "command";
    entry.name = std::move(name);
    entry.meaning = isCharacter(deed) ? asciiOf(deed.bytes[0]) : std::string(meaning);
  }
  const auto shown = deed.bytes.first(std::min(deed.bytes.size(), shownBytes));
  entry.bytes.assign(shown.begin(), shown.end());
  entries_.push_back(std::move(entry));
}

bool TrafficLog::continuesText(unsigned printer, const Deed& deed) {
  if (!isCharacter(deed) || entries_.empty() || skipped_ > 0) {
    return false;
  }
  Entry& last = entries_.back();
  if (last.name != "text" || last.printer != printer || last.length >= shownBytes) {
    return false;
  }
  last.meaning += asciiOf(deed.bytes[0]);
  last.bytes.push_back(deed.bytes[0]);
  ++last.length;
  return true;
}

void TrafficLog::addControl(unsigned printer, std::string_view line, std::string_view answer,
                            std::int64_t time) {
  if (hasRoom()) {
    entries_.push_back({.time = time,
                        .printer = printer,
                        .kind = "control",
                        .name = "control",
                        .meaning = printable(line.substr(0, longestLine)),
                        .answer = printable(answer.substr(0, longestLine))});
  }
}

void TrafficLog::addHost(unsigned printer, bool isConnected, std::int64_t time) {
  if (hasRoom()) {
    entries_.push_back({.time = time,
                        .printer = printer,
                        .kind = "host",
                        .name = isConnected ? "connected" : "left"});
  }
}

Json TrafficLog::inJson(const Entry& entry) {
  Json json = {{"time", entry.time},
               {"printer", entry.printer},
               {"kind", entry.kind},
               {"name", entry.name},
               {"meaning", entry.meaning}};
  if (entry.length > 0) {
    json.update({{"bytes", hexText(entry.bytes)}, {"length", entry.length}});
  }
  if (!entry.answer.empty()) {
    json["answer"] = entry.answer;
  }
  return json;
}

Json TrafficLog::take() {
  Json entries = Json::array();
  for (const Entry& entry : entries_) {
    entries.push_back(inJson(entry));
    kept_.push_back(entries.back());
  }
  entries_.clear();
  notKept_ += skipped_;
  while (kept_.size() > mostKept) {
    kept_.pop_front();
    ++notKept_;
  }
  return {{"entries", std::move(entries)}, {"skipped", std::exchange(skipped_, 0)}};
}

Json TrafficLog::kept() const {
  return {{"entries", kept_}, {"skipped", notKept_}};
}

}  // namespace quordalvane::tool
