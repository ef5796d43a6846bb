#include <nlohmann/json.hpp>

#include "tools/quorport/Commands.h"
#include "tools/quorport/Printer.h"
#include "tools/quorport/Report.h"
#include "tools/quorport/StatusFields.h"

namespace quordalvane::tool {

Report status(const Options& options, const Surroundings& surroundings) {
  Printer printer(options, surroundings);
  const QuorPrinterStatus_2 record = printer.ask(
      [&options](PrinterInquiry& inquiry) { return inquiry.status(options.status.level); });
  Report report;
  report.json["ok"] = true;
  report.json["status"] = jsonOf(record);
  report.text = describe(record) + (options.status.verbose ? describeEveryField(record) : "");
  return report;
}

}  // namespace quordalvane::tool
