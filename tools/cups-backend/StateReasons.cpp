#include "tools/cups-backend/StateReasons.h"

#include <cstdint>
#include <string_view>

namespace quordalvane::cups {
namespace {

struct Keyword {
  std::uint32_t QuorPrinterStatus_2::*flag;
  std::string_view reason;
};

constexpr Keyword keywords[] = {
    {&QuorPrinterStatus_2::offline, "offline-report"},
    {&QuorPrinterStatus_2::coverOpen, "cover-open-error"},
    {&QuorPrinterStatus_2::receiptPaperEmpty, "media-empty-error"},
    {&QuorPrinterStatus_2::receiptPaperNearEmptyInner, "media-low-warning"},
    {&QuorPrinterStatus_2::receiptPaperNearEmptyOuter, "media-low-warning"},
    {&QuorPrinterStatus_2::jamError, "media-jam-error"},
    {&QuorPrinterStatus_2::presenterPaperJamError, "media-jam-error"},
    {&QuorPrinterStatus_2::stackerFull, "output-area-full-error"},
    {&QuorPrinterStatus_2::headUpError, "interlock-open-error"},
    {&QuorPrinterStatus_2::overTemp, "other-error"},
    {&QuorPrinterStatus_2::unrecoverableError, "other-error"},
    {&QuorPrinterStatus_2::cutterError, "other-error"},
    {&QuorPrinterStatus_2::mechError, "other-error"},
    {&QuorPrinterStatus_2::headThermistorError, "other-error"},
    {&QuorPrinterStatus_2::receiveBufferOverflow, "other-error"},
    {&QuorPrinterStatus_2::pageModeCmdError, "other-error"},
    {&QuorPrinterStatus_2::paperDetectionError, "other-error"},
    {&QuorPrinterStatus_2::blackMarkError, "other-error"},
    {&QuorPrinterStatus_2::voltageError, "other-error"},
};

StateReasons collectEveryReason() {
  StateReasons all = unconfirmedJob;
  for (const Keyword& keyword : keywords) {
    all.emplace(keyword.reason);
  }
  return all;
}

}  // namespace

StateReasons reasonsIn(const QuorPrinterStatus_2& status) {
  StateReasons reasons;
  for (const Keyword& keyword : keywords) {
    if (status.*keyword.flag != 0) {
      reasons.emplace(keyword.reason);
    }
  }
  return reasons;
}

const StateReasons& everyReason() {
  static const StateReasons all = collectEveryReason();
  return all;
}

}  // namespace quordalvane::cups
