#include "tools/printer-app/JobDelivery.h"

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <optional>
#include <string>
#include <thread>

#include "backends/DeviceIdentity.h"
#include "journal/NamedJob.h"
#include "text/Quoted.h"
#include "tools/printer-app/DeviceUri.h"
#include "tools/printer-app/JobOrder.h"
#include "tools/printer-app/PrinterLink.h"
#include "tools/printer-app/Reasons.h"
#include "tools/printer-app/SavedState.h"

namespace quordalvane::printer_app {
namespace {

constexpr auto pause = std::chrono::seconds(1);

// A journal object may be used by one thread at a time. Each printer has its own thread, which
// opens the file itself.
std::filesystem::path journalFile;
std::filesystem::path stateFile;

// Returns a name that is the same after a restart of the application. The job's UUID would change,
// in version 1.3 of the framework, and a half-printed job would be printed again.
std::string nameOf(pappl_job_t* job) {
  pappl_printer_t* const printer = papplJobGetPrinter(job);
  return std::string(papplPrinterGetName(printer)) + " (" +
         std::to_string(papplPrinterGetID(printer)) + "), job " +
         std::to_string(papplJobGetID(job)) + " of " + std::to_string(papplJobGetTimeCreated(job));
}

/// Cancels the print job when the user cancels the framework's job.
class CancelWatch {
 public:
  CancelWatch(pappl_job_t* job, PrintJob& print)
      : thread_([this, job, &print] { watch(job, print); }) {}
  ~CancelWatch() {
    {
      const std::scoped_lock lock(mutex_);
      isOver_ = true;
    }
    over_.notify_one();
    thread_.join();
  }
  CancelWatch(const CancelWatch&) = delete;
  CancelWatch& operator=(const CancelWatch&) = delete;

 private:
  void watch(pappl_job_t* job, PrintJob& print) {
    std::unique_lock lock(mutex_);
    while (!over_.wait_for(lock, std::chrono::milliseconds(200), [this] { return isOver_; })) {
      if (papplJobIsCanceled(job)) {
        print.cancel();
      }
    }
  }

  std::mutex mutex_;
  std::condition_variable over_;
  bool isOver_ = false;
  std::thread thread_;
};

class Delivery {
 public:
  Delivery(pappl_job_t* job, const std::vector<std::uint8_t>& data)
      : job_(job),
        printer_(papplJobGetPrinter(job)),
        device_(deviceOf(papplPrinterGetDeviceURI(printer_))),
        data_(data),
        journal_(journalFile) {}

  bool run() {
    saveState(papplPrinterGetSystem(printer_), stateFile);
    for (bool isWaiting = false; !papplJobIsCanceled(job_); isWaiting = true) {
      if (isWaiting) {
        std::this_thread::sleep_for(pause);
      }
      if (isOlderUnderWay(job_)) {
        continue;
      }
      const PrintResult result = attempt();
      if (result.outcome != PrintOutcome::Refused) {
        return judge(result);
      }
      wait(result);
    }
    return false;
  }

 private:
  PrintResult attempt() {
    // After a restart the data of the same job may differ, because a font or a default of the
    // printer has changed.
    NamedJob named(journal_, {.name = nameOf(job_), .device = device_, .isNameEnough = true},
                   data_);
    if (named.answer()) {
      return named.answer()->result;
    }
    const auto turn = takeTurn(device_, std::chrono::seconds(10));
    if (!turn.isTaken) {
      return named.refuse(refusal("another job is on this printer")).result;
    }
    PrinterLink link(device_, papplPrinterGetDriverName(printer_));
    if (!link.isOpen()) {
      return named.refuse(refusal("the printer cannot be reached: " + link.error())).result;
    }
    PrintJob print(link.port(), named.recorded());
    const CancelWatch watch(job_, print);
    return named.run(print).result;
  }

  PrintResult refusal(const std::string& reason) const {
    PrintResult result;
    result.bytesTotal = data_.size();
    result.reason = reason;
    return result;
  }

  bool judge(const PrintResult& result) {
    showReasons(printer_, result);
    if (result.outcome == PrintOutcome::Printed) {
      papplJobSetMessage(job_, "%s", "the printer confirmed the job");
      return true;
    }
    papplJobSetMessage(job_, "unconfirmed: %s; %s", printable(result.reason).c_str(),
                       printable(result.advice).c_str());
    return false;
  }

  void wait(const PrintResult& result) {
    showReasons(printer_, result);
    papplJobSetMessage(job_, "waiting: %s", printable(result.reason).c_str());
  }

  pappl_job_t* const job_;
  pappl_printer_t* const printer_;
  const std::string device_;
  const std::vector<std::uint8_t>& data_;
  Journal journal_;
};

}  // namespace

void keepJobsIn(const std::filesystem::path& journal, const std::filesystem::path& state) {
  journalFile = journal;
  stateFile = state;
}

bool deliver(pappl_job_t* job, const std::vector<std::uint8_t>& data) {
  return Delivery(job, data).run();
}

}  // namespace quordalvane::printer_app
