#include <nlohmann/json.hpp>
#include <optional>

#include "platform/ProofKind.h"
#include "text/Quoted.h"
#include "tools/quorport/CommandFailure.h"
#include "tools/quorport/Commands.h"
#include "tools/quorport/Joined.h"
#include "tools/quorport/LiveLine.h"
#include "tools/quorport/Printer.h"
#include "tools/quorport/Report.h"
#include "tools/quorport/StatusFields.h"
#include "tools/quorport/doctor/Bundle.h"
#include "tools/quorport/doctor/Examination.h"

namespace quordalvane::tool {
namespace {

Json jsonOf(const Findings& findings) {
  Json list = Json::array();
  for (const Finding& finding : findings) {
    list.push_back({{"cause", finding.cause},
                    {"exitCode", static_cast<int>(finding.code)},
                    {"text", finding.text},
                    {"advice", finding.advice}});
  }
  return list;
}

Json jsonOf(const Diagnosis& diagnosis) {
  return {{"device", diagnosis.device},
          {"ok", diagnosis.findings.empty()},
          {"findings", jsonOf(diagnosis.findings)},
          {"remarks", diagnosis.remarks},
          {"proof", diagnosis.proof ? Json(nameOf(*diagnosis.proof)) : Json(nullptr)},
          {"status", diagnosis.status ? tool::jsonOf(*diagnosis.status) : Json(nullptr)}};
}

std::string inLines(const Findings& findings) {
  std::string text;
  for (const Finding& finding : findings) {
    text += "  wrong: " + finding.text + "\n";
    text += "  do:    " + finding.advice + "\n";
  }
  return text;
}

// A proof is the way in which a printer confirms jobs. Returns the name and the description of
// `proof`; `Auto` counts as `None`.
std::string inWords(ProofKind proof) {
  const ProofKind found = proof == ProofKind::Auto ? ProofKind::None : proof;
  return std::string(nameOf(found)) + ": " + std::string(aboutOf(found));
}

std::string proofLine(const Diagnosis& diagnosis) {
  if (!diagnosis.proof) {
    return "";
  }
  return "  proof: " + inWords(*diagnosis.proof) +
         (diagnosis.emulation == ZKEmulationESCPOS
              ? "; add ,proof=" + std::string(nameOf(*diagnosis.proof)) +
                    " to the device, so that no job asks the printer how it confirms jobs"
              : "") +
         "\n";
}

std::string inLines(const Diagnosis& diagnosis) {
  std::string text = printable(diagnosis.device) + "\n" + inLines(diagnosis.findings);
  const std::string words = joined(diagnosis.remarks, "; ");
  const std::string label = diagnosis.findings.empty() ? "  well:  " : "  seen:  ";
  return (words.empty() ? text : text + label + words + "\n") + proofLine(diagnosis);
}

// Reports a fault if no device matches the port name, but a device matches `BT:`, the name for any
// printer. If no device matches `BT:` either, the port name is not the cause.
Findings examinePortName(const Options& options, const Surroundings& surroundings) {
  const auto platform = presentDevices(options, surroundings);
  Options anyPrinter = options;
  anyPrinter.portName = "BT:";
  if (chosenAccessory(*platform, options) != nullptr ||
      chosenAccessory(*platform, anyPrinter) == nullptr) {
    return {};
  }
  return {{"port-name", ExitCode::NoAccessory, noneMatches(*platform, options).what(),
           "use --port-name \"BT:\" for the first printer, or \"BT:NAME\" with a name that "
           "quorport list shows"}};
}

void add(Report& report, const Findings& findings) {
  if (!findings.empty() && report.code == ExitCode::Done) {
    report.code = findings.front().code;
    report.json["ok"] = false;
    report.json["error"] = findings.front().text;
  }
}

Report examineAll(const Options& options, const Surroundings& surroundings) {
  Report report;
  report.json["ok"] = true;
  const Findings ofPort = examinePortName(options, surroundings);
  add(report, ofPort);
  report.text = inLines(ofPort);
  report.json["findings"] = jsonOf(ofPort);
  report.json["devices"] = Json::array();
  LiveLine line(surroundings.streams.err);
  for (const std::string& device : options.devices) {
    const Diagnosis diagnosis = examine(device, options, surroundings, line);
    add(report, diagnosis.findings);
    report.text += inLines(diagnosis);
    report.json["devices"].push_back(jsonOf(diagnosis));
  }
  return report;
}

}  // namespace

Report doctor(const Options& options, const Surroundings& surroundings) {
  if (options.devices.empty()) {
    throw CommandFailure(ExitCode::Usage,
                         "doctor examines devices: name at least one with --device");
  }
  std::optional<Bundle> bundle;
  if (options.doctor.bundle) {
    bundle.emplace(options);
  }
  Report report = examineAll(options, surroundings);
  if (bundle) {
    const std::string why = bundle->write(report.json.value());
    report.json["bundle"] = why.empty() ? Json(*options.doctor.bundle) : Json(nullptr);
    if (!why.empty()) {
      complain(why, surroundings.streams);
      report.code = report.code == ExitCode::Done ? ExitCode::ExchangeFailed : report.code;
    } else {
      report.text += "\nThe file " + printable(*options.doctor.bundle) +
                     " holds no print data and can be sent to others.\n";
    }
  }
  return report;
}

}  // namespace quordalvane::tool
