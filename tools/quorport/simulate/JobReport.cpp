#include "tools/quorport/simulate/JobReport.h"

#include <nlohmann/json.hpp>

#include "tools/quorport/Hex.h"

namespace quordalvane::tool {

Json inJson(const JobReport& report, const simulator::JobRecord& record) {
  Json asked = Json::array();
  for (const auto& question : record.asked()) {
    asked.push_back({{"command", hexOf(question.command)}, {"answer", hexOf(question.answer)}});
  }
  Json unknown = Json::array();
  for (const auto& command : record.unknown()) {
    unknown.push_back(
        {{"offset", command.offset}, {"bytes", hexOf(command.bytes)}, {"name", command.name}});
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
          {"missing", record.missing()}};
}

}  // namespace quordalvane::tool
