#include "tools/quorport/Report.h"

#include <nlohmann/json.hpp>

#include "logging/DescriptorOutput.h"
#include "text/Quoted.h"

namespace quordalvane::tool {

Report done(const std::string& line) {
  Report report;
  report.json["ok"] = true;
  report.text = line + "\n";
  return report;
}

Report failed(ExitCode code, const std::string& error) {
  Report report;
  setFailed(report, code, error);
  return report;
}

void setFailed(Report& report, ExitCode code, const std::string& error) {
  report.code = code;
  report.json["ok"] = false;
  report.json["error"] = error;
  report.error = error;
}

std::string labelOf(const std::optional<std::string>& device) {
  if (!device) {
    return "";
  }
  // No colon is added to the text "virtual:", which already ends in one.
  return printable(*device) + (device->ends_with(':') ? " " : ": ");
}

void nameDevice(Report& report, const std::optional<std::string>& device) {
  if (device && !report.json.isEmpty()) {
    report.json["device"] = *device;
  }
  for (std::string* const text : {&report.text, &report.error}) {
    if (!text->empty()) {
      text->insert(0, labelOf(device));
    }
  }
}

std::error_code deliver(const Report& report, bool asJson, const Streams& streams) {
  const bool hasObject = asJson && !report.json.isEmpty();
  const std::string object = hasObject ? inOneLine(report.json.value()) + "\n" : "";
  const WriteOutcome outcome = writeAll(streams.out, asJson ? object : report.text);
  if (!report.error.empty()) {
    complain(report.error, streams);
  }
  if (outcome.error) {
    complain("the result could not be written to standard output: " + outcome.error.message(),
             streams);
  }
  return outcome.error;
}

}  // namespace quordalvane::tool
