#include "tools/quorport/doctor/StatusFindings.h"

#include "job/StatusText.h"
#include "tools/quorport/ExitCode.h"

namespace quordalvane::tool {
namespace {

Finding notReady(std::string_view cause, const std::string& text, const std::string& advice) {
  return {cause, ExitCode::NotReady, text, advice};
}

// Returns the reasons why the printer is off line, except an open cover and missing paper, which
// `findingsIn` reports separately. Returns "" if there are no such reasons.
std::string otherReasons(QuorPrinterStatus_2 status) {
  status.coverOpen = 0;
  status.receiptPaperEmpty = 0;
  QuorPrinterStatus_2 noReason = {};
  noReason.offline = 1;
  const std::string words = whyOffline(status);
  return words == whyOffline(noReason) ? "" : words;
}

}  // namespace

Findings findingsIn(const QuorPrinterStatus_2& status) {
  Findings findings;
  if (status.coverOpen != 0) {
    findings.push_back(
        notReady("cover-open", "the cover is open",
                 "close the cover; the printer then prints the data that it still holds"));
  }
  if (status.receiptPaperEmpty != 0) {
    findings.push_back(notReady("paper-out", "the paper is out",
                                "put a new roll in, the right way round, and close the cover"));
  }
  if (status.paperPresent != 0) {
    findings.push_back(notReady("paper-in-exit", "paper was left in the printer's exit",
                                "take the receipt out; jobs are refused until then"));
  }
  if (const std::string reasons = otherReasons(status); !reasons.empty()) {
    findings.push_back(notReady("printer-error", "the printer reports: " + reasons,
                                "remove the cause at the printer, then switch it off and on"));
  }
  if (status.offline != 0 && findings.empty()) {
    findings.push_back(notReady("off-line", "the printer is off line and gives no reason",
                                "look at its lamps; press its on-line or feed button"));
  }
  return findings;
}

}  // namespace quordalvane::tool
