#include "tools/printer-app/Reasons.h"

#include <chrono>
#include <cstdint>
#include <cstring>
#include <exception>
#include <map>
#include <mutex>
#include <string>

#include "job/PrintJob.h"
#include "job/PrinterInquiry.h"
#include "tools/printer-app/DeviceUri.h"
#include "tools/printer-app/PrinterLink.h"

namespace quordalvane::printer_app {
namespace {

struct Condition {
  std::uint32_t QuorPrinterStatus_2::*flag;
  pappl_preason_t reason;
};

// The conditions that stop the printer, and paper that is near its end. The framework's version 1.3
// shows a client no reason at all if one of the reasons is "door-open".
constexpr Condition conditions[] = {
    {&QuorPrinterStatus_2::coverOpen, PAPPL_PREASON_COVER_OPEN},
    {&QuorPrinterStatus_2::headUpError, PAPPL_PREASON_OTHER},
    {&QuorPrinterStatus_2::receiptPaperEmpty, PAPPL_PREASON_MEDIA_EMPTY},
    {&QuorPrinterStatus_2::receiptPaperNearEmptyInner, PAPPL_PREASON_MEDIA_LOW},
    {&QuorPrinterStatus_2::receiptPaperNearEmptyOuter, PAPPL_PREASON_MEDIA_LOW},
    {&QuorPrinterStatus_2::jamError, PAPPL_PREASON_MEDIA_JAM},
    {&QuorPrinterStatus_2::presenterPaperJamError, PAPPL_PREASON_MEDIA_JAM},
    {&QuorPrinterStatus_2::stackerFull, PAPPL_PREASON_OTHER},
    {&QuorPrinterStatus_2::overTemp, PAPPL_PREASON_OTHER},
    {&QuorPrinterStatus_2::unrecoverableError, PAPPL_PREASON_OTHER},
    {&QuorPrinterStatus_2::cutterError, PAPPL_PREASON_OTHER},
    {&QuorPrinterStatus_2::mechError, PAPPL_PREASON_OTHER},
    {&QuorPrinterStatus_2::headThermistorError, PAPPL_PREASON_OTHER},
    {&QuorPrinterStatus_2::receiveBufferOverflow, PAPPL_PREASON_OTHER},
    {&QuorPrinterStatus_2::pageModeCmdError, PAPPL_PREASON_OTHER},
    {&QuorPrinterStatus_2::paperDetectionError, PAPPL_PREASON_OTHER},
    {&QuorPrinterStatus_2::blackMarkError, PAPPL_PREASON_OTHER},
    {&QuorPrinterStatus_2::voltageError, PAPPL_PREASON_OTHER},
};

constexpr pappl_preason_t ours = PAPPL_PREASON_COVER_OPEN | PAPPL_PREASON_MEDIA_EMPTY |
                                 PAPPL_PREASON_MEDIA_LOW | PAPPL_PREASON_MEDIA_JAM |
                                 PAPPL_PREASON_OFFLINE | PAPPL_PREASON_OTHER;

pappl_preason_t reasonsOf(const QuorPrinterStatus_2& status) {
  pappl_preason_t reasons = PAPPL_PREASON_NONE;
  for (const Condition& condition : conditions) {
    if (status.*condition.flag != 0) {
      reasons |= condition.reason;
    }
  }
  // "Off line" is shown only if no other reason explains it.
  constexpr pappl_preason_t causes = ours & ~pappl_preason_t{PAPPL_PREASON_MEDIA_LOW};
  const bool isCauseKnown = (reasons & causes) != 0;
  return status.offline != 0 && !isCauseKnown ? reasons | PAPPL_PREASON_OFFLINE : reasons;
}

void show(pappl_printer_t* printer, pappl_preason_t reasons) {
  papplPrinterSetReasons(printer, reasons, ours & ~reasons);
  pappl_supply_t roll{};
  roll.color = PAPPL_SUPPLY_COLOR_NO_COLOR;
  std::strcpy(roll.description, "Paper roll");
  roll.is_consumed = true;
  roll.type = PAPPL_SUPPLY_TYPE_OTHER;
  // The level in percent. A printer reports only whether the paper is nearly or completely used up.
  roll.level = (reasons & PAPPL_PREASON_MEDIA_EMPTY) != 0 ? 0
               : (reasons & PAPPL_PREASON_MEDIA_LOW) != 0 ? 10
                                                          : 100;
  papplPrinterSetSupplies(printer, 1, &roll);
}

// Returns true at most once in two seconds for each printer.
bool isDue(pappl_printer_t* printer) {
  using Clock = std::chrono::steady_clock;
  static std::mutex mutex;
  static std::map<int, Clock::time_point> asked;
  const std::scoped_lock lock(mutex);
  auto& last = asked[papplPrinterGetID(printer)];
  const auto now = Clock::now();
  if (last != Clock::time_point() && now - last < std::chrono::seconds(2)) {
    return false;
  }
  last = now;
  return true;
}

// Opens a port to the printer and calls `use` with it, unless somebody else uses the printer.
template <typename Use>
void withIdle(pappl_printer_t* printer, Use use) {
  try {
    const std::string device = deviceOf(papplPrinterGetDeviceURI(printer));
    const Turn turn = takeTurn(device, std::chrono::milliseconds(0));
    if (!turn.isTaken) {
      return;
    }
    PrinterLink link(device, papplPrinterGetDriverName(printer));
    if (link.isOpen()) {
      use(link.port());
    } else {
      show(printer, PAPPL_PREASON_OFFLINE);
    }
  } catch (const std::exception&) {
    show(printer, PAPPL_PREASON_OFFLINE);
  }
}

}  // namespace

void showReasons(pappl_printer_t* printer, const PrintResult& result) {
  if (result.status) {
    show(printer, reasonsOf(*result.status));
  } else if (result.outcome == PrintOutcome::Refused) {
    show(printer, PAPPL_PREASON_OFFLINE);
  }
}

bool updateReasons(pappl_printer_t* printer) {
  if (papplPrinterGetState(printer) == IPP_PSTATE_PROCESSING || !isDue(printer)) {
    return true;
  }
  withIdle(printer,
           [&](const auto& port) { show(printer, reasonsOf(PrinterInquiry(port).status())); });
  return true;
}

void beep(pappl_printer_t* printer, pappl_identify_actions_t /*actions*/, const char* /*message*/) {
  constexpr std::uint8_t threeTimes[] = {0x1b, 0x42, 3, 2};
  withIdle(printer, [&](const auto& port) {
    PrintJob(port, {.proof = ProofKind::None}).run(ByteView(threeTimes));
  });
}

}  // namespace quordalvane::printer_app
