#include "tools/printer-app/JobOrder.h"

#include <algorithm>
#include <map>
#include <mutex>
#include <set>
#include <utility>
#include <vector>

#include "tools/printer-app/LibraryFunction.h"

namespace quordalvane::printer_app {
namespace {

constexpr auto holder = "quorport-printer-app";

struct WaitingJob {
  int id;
  bool isHeld;  // true if the job is held until its turn
};

// The framework holds the printer's lock during this call, so this function must not change a job.
void note(pappl_job_t* job, void* jobs) {
  const ipp_jstate_t state = papplJobGetState(job);
  const bool isHeld = isHeldForItsTurn(state, papplJobGetReasons(job));
  if (state == IPP_JSTATE_PENDING || isHeld) {
    static_cast<std::vector<WaitingJob>*>(jobs)->push_back({papplJobGetID(job), isHeld});
  }
}

// Returns the waiting jobs, the oldest first.
std::vector<WaitingJob> waitingJobs(pappl_printer_t* printer) {
  std::vector<WaitingJob> jobs;
  papplPrinterIterateActiveJobs(printer, note, &jobs, 1, 0);
  std::ranges::sort(jobs, {}, &WaitingJob::id);
  return jobs;
}

void hold(pappl_job_t* job) {
  papplJobSetReasons(job, PAPPL_JREASON_JOB_QUEUED, PAPPL_JREASON_NONE);
  papplJobHold(job, holder, nullptr, 0);
}

void release(pappl_job_t* job) {
  papplJobSetReasons(job, PAPPL_JREASON_NONE, PAPPL_JREASON_JOB_QUEUED);
  papplJobRelease(job, holder);
}

// The jobs whose threads run.
class StartedJobs {
 public:
  // Adds the job if it waits and is not in this set yet. Returns true if it was added.
  bool add(pappl_job_t* job) {
    const std::scoped_lock lock(mutex_);
    return papplJobGetState(job) == IPP_JSTATE_PENDING && jobs_.insert(job).second;
  }
  void remove(pappl_job_t* job) {
    const std::scoped_lock lock(mutex_);
    jobs_.erase(job);
  }

 private:
  std::mutex mutex_;
  std::set<pappl_job_t*> jobs_;
};

}  // namespace

void letOldestGoNext(pappl_printer_t* printer) {
  static std::mutex mutex;
  const std::scoped_lock lock(mutex);
  bool isFirst = true;
  for (const WaitingJob& waiting : waitingJobs(printer)) {
    pappl_job_t* const job = papplPrinterFindJob(printer, waiting.id);
    const bool isNext = std::exchange(isFirst, false);
    if (job != nullptr && isNext && waiting.isHeld) {
      release(job);
    } else if (job != nullptr && !isNext && !waiting.isHeld) {
      hold(job);
    }
  }
}

bool isOlderUnderWay(pappl_job_t* job) {
  struct Search {
    int id;
    bool isFound;
  } search = {papplJobGetID(job), false};
  papplPrinterIterateActiveJobs(
      papplJobGetPrinter(job),
      [](pappl_job_t* other, void* data) {
        auto& asked = *static_cast<Search*>(data);
        asked.isFound |=
            papplJobGetID(other) < asked.id && papplJobGetState(other) == IPP_JSTATE_PROCESSING;
      },
      &search, 1, 0);
  return search.isFound;
}

bool waitsInVain(pappl_printer_t* printer) {
  static std::map<int, int> oldestJobs;  // the oldest waiting job of each printer; 0 if none waits
  int oldest = 0;
  if (papplPrinterGetState(printer) == IPP_PSTATE_IDLE) {
    const std::vector<WaitingJob> waiting = waitingJobs(printer);
    oldest = waiting.empty() ? 0 : waiting.front().id;
  }
  const int before = std::exchange(oldestJobs[papplPrinterGetID(printer)], oldest);
  return oldest != 0 && oldest == before;
}

// A job that a user holds has a time until which it is held; the time may be "indefinite".
bool isHeldForItsTurn(ipp_jstate_t state, pappl_jreason_t reasons) {
  return state == IPP_JSTATE_HELD && (reasons & PAPPL_JREASON_JOB_QUEUED) != 0 &&
         (reasons & PAPPL_JREASON_JOB_HOLD_UNTIL_SPECIFIED) == 0;
}

}  // namespace quordalvane::printer_app

// The framework can start several threads for one job, because the job counts as waiting until its
// first thread runs. A second thread would print the job again, or find that its document is gone.
// The framework would also list the job twice, and use it after it has freed it. So this program
// replaces the function of these threads, and only the first one processes the job.
// NOLINTNEXTLINE(readability-identifier-naming): the framework's name
extern "C" [[gnu::visibility("default")]] void* _papplJobProcess(pappl_job_t* job) {
  using namespace quordalvane::printer_app;
  static auto* const process = libraryFunction<void*(pappl_job_t*)>("_papplJobProcess");
  static StartedJobs started;
  if (!started.add(job)) {
    return nullptr;
  }
  void* const result = process(job);
  started.remove(job);
  return result;
}
