#include "tools/cups-backend/Aftermath.h"

#include "journal/NamedJob.h"
#include "tools/cups-backend/JobBlocks.h"

namespace quordalvane::cups {
namespace {

void complainUnconfirmed(const std::string& why, StatusLines& lines) {
  lines.setReasons(unconfirmedJob);
  lines.complain("unconfirmed: " + why +
                 "; look at the paper before you release the job; a released job is printed again");
}

// Returns true if a person must decide about the block, and reports why. Returns false if the block
// is on paper.
bool mustBeHeld(Journal& journal, const JobBlock& block, const DeviceUri& uri, const BrokenOff& end,
                StatusLines& lines) {
  NamedJob named(journal, {.name = block.name, .device = uri.device, .isNameEnough = true}, {});
  if (!named.answer()) {
    lines.complain(end.how + "; the rest was not sent; release the job to print the rest");
    return true;
  }
  if (named.answer()->isRepeated) {
    return false;
  }
  complainUnconfirmed(named.answer()->result.reason, lines);
  named.tell();
  return true;
}

}  // namespace

ExitCode judgeBrokenOff(const BackEndJob& job, const DeviceUri& uri, const BrokenOff& end,
                        StatusLines& lines) {
  if (end.isCanceled) {
    return ExitCode::Done;
  }
  try {
    Journal journal(job.journal);
    for (const JobBlock& block : blocksOf(job, uri)) {
      if (mustBeHeld(journal, block, uri, end, lines)) {
        return ExitCode::Held;
      }
    }
    return ExitCode::Done;
  } catch (const std::exception& error) {
    complainUnconfirmed(end.how + ", and " + error.what(), lines);
    return ExitCode::Held;
  }
}

}  // namespace quordalvane::cups
