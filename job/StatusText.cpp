#include "job/StatusText.h"

#include <cstdint>
#include <string_view>

namespace quordalvane {
namespace {

struct Cause {
  std::uint32_t QuorPrinterStatus_2::*flag;
  std::string_view words;
};

constexpr Cause causes[] = {
    {&QuorPrinterStatus_2::coverOpen, "cover open"},
    {&QuorPrinterStatus_2::receiptPaperEmpty, "paper out"},
    {&QuorPrinterStatus_2::overTemp, "print head too hot"},
    {&QuorPrinterStatus_2::cutterError, "cutter error"},
    {&QuorPrinterStatus_2::jamError, "paper jam"},
    {&QuorPrinterStatus_2::presenterPaperJamError, "paper jam in the presenter"},
    {&QuorPrinterStatus_2::headUpError, "print head raised"},
    {&QuorPrinterStatus_2::voltageError, "supply voltage error"},
    {&QuorPrinterStatus_2::headThermistorError, "print head sensor error"},
    {&QuorPrinterStatus_2::mechError, "mechanical error"},
    {&QuorPrinterStatus_2::paperDetectionError, "paper detection error"},
    {&QuorPrinterStatus_2::blackMarkError, "black mark not found"},
    {&QuorPrinterStatus_2::receiveBufferOverflow, "receive buffer overflow"},
    {&QuorPrinterStatus_2::pageModeCmdError, "page mode command error"},
    {&QuorPrinterStatus_2::unrecoverableError, "unrecoverable error"},
    {&QuorPrinterStatus_2::stackerFull, "stacker full"},
};

}  // namespace

std::string whyOffline(const QuorPrinterStatus_2& status) {
  return status.offline == 0 ? "" : whyNotReady(status);
}

std::string whyNotReady(const QuorPrinterStatus_2& status) {
  const std::string words = errorsIn(status);
  return words.empty() && status.offline != 0 ? "off line" : words;
}

std::string errorsIn(const QuorPrinterStatus_2& status) {
  std::string words;
  for (const Cause& cause : causes) {
    if (status.*cause.flag != 0) {
      words += (words.empty() ? "" : ", ") + std::string(cause.words);
    }
  }
  return words;
}

}  // namespace quordalvane
