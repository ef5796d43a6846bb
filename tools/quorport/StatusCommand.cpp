#include "tools/quorport/Commands.h"
#include "tools/quorport/StatusAnswer.h"
#include "tools/quorport/StatusFields.h"

namespace quordalvane::tool {

Report status(const Options& options, const Surroundings& surroundings) {
  Printer printer(options, surroundings);
  const QuorPrinterStatus_2 record = askForStatus(printer, options.status.level);
  Report report;
  report.json["ok"] = true;
  report.json["status"] = jsonOf(record);
  report.text = describe(record) + (options.status.verbose ? describeEveryField(record) : "");
  return report;
}

}  // namespace quordalvane::tool
