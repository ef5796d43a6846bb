#include "tools/quorport/simulate/JobReport.h"

#include <nlohmann/json.hpp>

#include "text/Hex.h"

namespace quordalvane::tool {
namespace {

const char* nameOf(simulator::JobRecord::EventKind kind) {
  using enum simulator::JobRecord::EventKind;
  switch (kind) {
    case Cut:
      return "cut";
    case Drawer:
      return "drawer";
    case Beep:
      return "beep";
    case Display:
      return "display";
    case Replaced:
      return "replaced";
    case Question:
      break;
  }
  return "question";
}

}  // namespace

Json inJson(const JobReport& report, const simulator::JobRecord& record) {
  Json asked = Json::array();
  for (const auto& question : record.asked()) {
    asked.push_back({{"command", hexText(question.command)}, {"answer", hexText(question.answer)}});
  }
  Json unknown = Json::array();
  for (const auto& command : record.unknown()) {
    unknown.push_back(
        {{"offset", command.offset}, {"bytes", hexText(command.bytes)}, {"name", command.name}});
  }
  Json events = Json::array();
  for (const auto& event : record.events()) {
    events.push_back({{"event", nameOf(event.kind)}});
    if (!event.text.empty()) {
      events.back()["text"] = event.text;
    }
  }
  return {{"job", report.job},
          {"printer", report.printer},
          {"ok", report.ok},
          {"files", report.files},
          {"cuts", record.cuts()},
          {"drawer", record.drawer()},
          {"beeps", record.beeps()},
          {"codePages", record.codePages()},
          {"asked", std::move(asked)},
          {"unknown", std::move(unknown)},
          {"missing", record.missing()},
          {"events", std::move(events)}};
}

}  // namespace quordalvane::tool
