#include "tools/printer-app/JobOrder.h"

#include <algorithm>
#include <map>
#include <mutex>
#include <set>
#include <utility>
#include <vector>

namespace quordalvane::printer_app {
namespace {

constexpr auto holder = "quorport-printer-app";

struct ActiveJob {
  int id;
  ipp_jstate_t state;
};

// The framework locks the printer meanwhile, so that nothing else can be done there.
void note(pappl_job_t* job, void* jobs) {
  static_cast<std::vector<ActiveJob>*>(jobs)->push_back(
      {papplJobGetID(job), papplJobGetState(job)});
}

std::vector<ActiveJob> activeJobs(pappl_printer_t* printer) {
  std::vector<ActiveJob> jobs;
  papplPrinterIterateActiveJobs(printer, note, &jobs, 1, 0);
  std::ranges::sort(jobs, {}, &ActiveJob::id);
  return jobs;
}

void setHeld(pappl_printer_t* printer, int id, bool isHeld) {
  pappl_job_t* const job = papplPrinterFindJob(printer, id);
  if (job != nullptr && isHeld) {
    papplJobHold(job, holder, "indefinite", 0);
  } else if (job != nullptr) {
    papplJobRelease(job, holder);
  }
}

}  // namespace

void letOldestGoNext(pappl_printer_t* printer) {
  static std::mutex mutex;
  static std::map<int, std::set<int>> heldOfPrinters;
  const std::scoped_lock lock(mutex);
  std::set<int>& held = heldOfPrinters[papplPrinterGetID(printer)];
  std::set<int> stillHeld;
  bool isFirst = true;
  for (const ActiveJob& job : activeJobs(printer)) {
    const bool isOurs = job.state == IPP_JSTATE_HELD && held.contains(job.id);
    if (job.state != IPP_JSTATE_PENDING && !isOurs) {
      continue;
    }
    if (std::exchange(isFirst, false)) {
      if (isOurs) {
        setHeld(printer, job.id, false);
      }
    } else {
      if (!isOurs) {
        setHeld(printer, job.id, true);
      }
      stillHeld.insert(job.id);
    }
  }
  held = std::move(stillHeld);
}

}  // namespace quordalvane::printer_app
