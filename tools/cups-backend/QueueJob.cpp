#include "tools/cups-backend/QueueJob.h"

#include <chrono>
#include <memory>
#include <thread>

#include "job/PrinterInquiry.h"
#include "job/StatusText.h"
#include "text/Number.h"
#include "tools/cups-backend/Release.h"

namespace quordalvane::cups {
namespace {

// The pause before a waiting job tries again. It is so short that the job continues within a second
// after the cause of the wait, for example a busy printer, is gone.
constexpr auto lookPause = std::chrono::milliseconds(500);

constexpr auto onAnotherJob = "waiting: another job is on the printer";

const StateReasons journalTrouble = {"other-error"};

StateReasons reasonsOf(const PrintResult& result) {
  return result.status ? reasonsIn(*result.status) : outOfReach;
}

}  // namespace

QueueJob::QueueJob(const BackEndJob& job, const DeviceUri& uri, const Surroundings& surroundings)
    : job_(job),
      uri_(uri),
      with_(surroundings),
      printer_(uri, [this] { with_.lines.inform(onAnotherJob); }) {}

ExitCode QueueJob::print(const std::vector<std::uint8_t>& copy,
                         const std::function<void()>& onConfirmed) {
  for (const JobBlock& block : blocksOf(job_, uri_)) {
    if (const ExitCode code = printBlock(block, dataOf(block, copy)); code != ExitCode::Done) {
      with_.state.setData(PrinterState::Data::Lost);
      return code;
    }
  }
  with_.state.setData(PrinterState::Data::Printed);
  onConfirmed();
  forgetOldJobs();
  return ExitCode::Done;
}

/// Removes old jobs, so that the journal does not grow for ever. The search for them takes time, so
/// only one job in a hundred searches.
void QueueJob::forgetOldJobs() const {
  constexpr unsigned jobsBetween = 100;
  constexpr std::uint32_t daysKept = 30;
  const auto number = numberIn<unsigned>(job_.number);
  if (!number || *number % jobsBetween != 0) {
    return;
  }
  try {
    Journal(job_.journal).forgetOlderThan(daysKept);
  } catch (const JournalError& error) {
    with_.lines.note(error.what());
  }
}

ExitCode QueueJob::printBlock(const JobBlock& block, const std::vector<std::uint8_t>& data) {
  while (true) {
    Verdict verdict;
    try {
      verdict = tryBlock(block, data);
    } catch (const OutOfReach& why) {
      verdict = postpone(why.what(), outOfReach);
    } catch (const JournalError& error) {
      printer_.close();
      verdict = postpone(error.what(), journalTrouble);
    }
    if (verdict) {
      return *verdict;
    }
    std::this_thread::sleep_for(lookPause);
  }
}

QueueJob::Verdict QueueJob::tryBlock(const JobBlock& block, const std::vector<std::uint8_t>& data) {
  Journal journal(job_.journal);
  NamedJobRequest request{
      .name = block.name,
      .device = uri_.device,
      .isNameEnough = true,
      .timeout = std::chrono::hours(24),
      .onWait = [this] { with_.lines.inform("waiting: another process prints this job"); }};
  auto named = std::make_unique<NamedJob>(journal, request, data);
  if (named->answer() && isWantedAgain(*named->answer())) {
    const bool isPrinted = named->answer()->isRepeated;
    named.reset();
    if (isPrinted) {
      journal.forget(block.name);
    }
    request.again = true;
    named = std::make_unique<NamedJob>(journal, request, data);
  }
  if (named->answer()) {
    return answered(*named, block);
  }
  printer_.open();
  return run(*named, block);
}

/// Returns true if a person has asked for another print: the person has restarted the job after its
/// end, or has released the job while the scheduler held it. The scheduler does neither by itself.
bool QueueJob::isWantedAgain(const NamedJobResult& known) const {
  constexpr std::int64_t millisInSecond = 1000;
  if (job_.ended && known.begun / millisInSecond <= *job_.ended) {
    return true;
  }
  return !known.isRepeated && known.told &&
         isReleased(*known.told, with_.schedulerStart, job_.controlFile);
}

QueueJob::Verdict QueueJob::answered(NamedJob& named, const JobBlock& block) {
  const NamedJobResult& known = *named.answer();
  if (!known.isRepeated) {
    return hold(named, known.result);
  }
  with_.lines.note("already printed in attempt " + std::to_string(known.attempt) +
                   "; this time nothing was sent");
  return confirm(block, known.result);
}

PrintJob::Options QueueJob::options() {
  return {.progress = [this](const PrintProgress& progress) {
    if (!progress.waitsFor.empty()) {
      with_.lines.setReasons(outOfReach);
      with_.lines.inform("waiting: " + progress.waitsFor);
    } else if (progress.stage != PrintStage::Begin) {
      with_.lines.setReasons({});
      with_.lines.inform("printing");
    }
  }};
}

QueueJob::Verdict QueueJob::run(NamedJob& named, const JobBlock& block) {
  PrintJob print(printer_.port(), named.recorded(options()));
  with_.wish.beginJob(print);
  NamedJobResult result;
  try {
    result = named.run(print);
  } catch (const JournalError&) {
    with_.wish.endJob();
    throw;  // nothing was sent
  } catch (const std::exception& error) {
    // The count of sent bytes is unknown.
    result.result.outcome = PrintOutcome::Unconfirmed;
    result.result.reason = error.what();
  }
  with_.wish.endJob();
  return judge(named, result, block);
}

QueueJob::Verdict QueueJob::judge(NamedJob& named, const NamedJobResult& result,
                                  const JobBlock& block) {
  if (!result.notRecorded.empty()) {
    with_.lines.complain("the outcome could not be recorded: " + result.notRecorded);
  }
  if (result.result.status) {
    with_.state.setStatus(*result.result.status);
  }
  switch (result.result.outcome) {
    case PrintOutcome::Printed:
      return confirm(block, result.result);
    case PrintOutcome::Unconfirmed:
      return result.result.obstacle == PrintObstacle::Cancelled ? ExitCode::CutOff
                                                                : hold(named, result.result);
    case PrintOutcome::Refused:
      break;
  }
  if (result.result.obstacle == PrintObstacle::Cancelled) {
    return ExitCode::CutOff;
  }
  const Verdict verdict = postpone(result.result.reason, reasonsOf(result.result));
  if (!verdict) {
    awaitReady(result.result);
  }
  return verdict;
}

ExitCode QueueJob::confirm(const JobBlock& block, const PrintResult& result) {
  with_.lines.count(block.number, block.copies);
  with_.lines.setReasons(result.status ? reasonsIn(*result.status) : StateReasons());
  return ExitCode::Done;
}

ExitCode QueueJob::hold(NamedJob& named, const PrintResult& result) {
  StateReasons reasons = unconfirmedJob;
  if (result.status) {
    reasons.merge(reasonsIn(*result.status));
  }
  with_.lines.setReasons(reasons);
  with_.lines.complain(
      "unconfirmed: " + result.reason +
      "; look at the paper before you release the job; a released job is printed again");
  try {
    named.tell();
  } catch (const JournalError& error) {
    with_.lines.complain(error.what());
  }
  return ExitCode::Held;
}

/// Postpones a job of which nothing was sent. If the job was sent to a class of printers, the
/// scheduler may now try another printer of the class; otherwise the job waits for its printer. For
/// a class, this function sleeps first, so that the scheduler does not try one printer after the
/// other without a pause.
QueueJob::Verdict QueueJob::postpone(const std::string& why, const StateReasons& reasons) {
  with_.lines.setReasons(reasons);
  with_.lines.inform("waiting: " + why);
  if (!job_.isOfClass) {
    return std::nullopt;
  }
  std::this_thread::sleep_for(lookPause);
  return ExitCode::NextPrinter;
}

/// Asks for the status over the open link until the printer is ready. Closes a lost link; the next
/// attempt opens a new one.
void QueueJob::awaitReady(const PrintResult& refused) {
  if (refused.obstacle != PrintObstacle::PrinterNotReady || !printer_.port()->isConnected()) {
    printer_.close();
    return;
  }
  try {
    while (true) {
      std::this_thread::sleep_for(lookPause);
      const QuorPrinterStatus_2 status = PrinterInquiry(printer_.port()).status();
      with_.state.setStatus(status);
      const std::string why = whyOffline(status);
      const std::string cause = why.empty() ? errorsIn(status) : why;
      if (cause.empty()) {
        return;
      }
      postpone(cause, reasonsIn(status));
    }
  } catch (const InquiryError&) {
    printer_.close();
  }
}

}  // namespace quordalvane::cups
