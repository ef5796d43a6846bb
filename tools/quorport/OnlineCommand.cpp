#include <nlohmann/json.hpp>

#include "tools/quorport/Commands.h"
#include "tools/quorport/ExitCode.h"
#include "tools/quorport/Printer.h"
#include "tools/quorport/Report.h"

namespace quordalvane::tool {

Report online(const Options& options, const Surroundings& surroundings) {
  Printer printer(options, surroundings);
  const bool isOnline = printer.ask([](PrinterInquiry& inquiry) { return inquiry.isOnline(); });
  Report report = done(isOnline ? "on line" : "off line");
  report.json["online"] = isOnline;
  report.code = isOnline ? ExitCode::Done : ExitCode::NotReady;
  return report;
}

}  // namespace quordalvane::tool
