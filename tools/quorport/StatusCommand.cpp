#include "tools/quorport/Commands.h"
#include "tools/quorport/Printer.h"
#include "tools/quorport/StatusFields.h"

namespace quordalvane::tool {

Report status(const Options& options, const Surroundings& surroundings) {
  Printer printer(options, surroundings);
  QuorPrinterStatus_2 record = {};
  const bool answered = printer.exchange([&](ExternalAccessoryPort& port) {
    return port.getParsedStatus(&record, options.statusLevel);
  });
  if (!answered) {
    throw printer.failure(options.emulation == ZKEmulationUnknown
                              ? "a status needs a known emulation: --emulation line or escpos"
                              : "the printer did not answer");
  }
  Report report;
  report.json["ok"] = true;
  report.json["status"] = jsonOf(record);
  report.text = describe(record) + (options.verbose ? describeEveryField(record) : "");
  return report;
}

}  // namespace quordalvane::tool
