#include "tools/quorport/StatusAnswer.h"

namespace quordalvane::tool {

bool isStatusBlock(const QuorPrinterStatus_2& status) {
  return (status.raw[0] & 0xc0) == 0x80;
}

QuorPrinterStatus_2 askForStatus(Printer& printer, std::uint32_t level) {
  QuorPrinterStatus_2 status = {};
  const bool answered = printer.exchange(
      [&](ExternalAccessoryPort& port) { return port.getParsedStatus(&status, level); });
  if (!answered) {
    throw failureWithoutStatus(printer, "the printer did not answer");
  }
  if (printer.port()->emulation() == ZKEmulationQuorLine && !isStatusBlock(status)) {
    throw printer.failure("the printer's answer is not a status of this emulation");
  }
  return status;
}

Failure failureWithoutStatus(Printer& printer, const std::string& otherwise) {
  return printer.failure(printer.port()->emulation() == ZKEmulationUnknown
                             ? "the printer cannot be asked without a known emulation: "
                               "--emulation line or escpos"
                             : otherwise);
}

}  // namespace quordalvane::tool
