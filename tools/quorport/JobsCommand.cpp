#include <chrono>
#include <filesystem>
#include <nlohmann/json.hpp>
#include <string_view>
#include <system_error>

#include "job/PrintResult.h"
#include "job/Words.h"
#include "journal/Journal.h"
#include "text/Quoted.h"
#include "tools/quorport/CommandFailure.h"
#include "tools/quorport/Commands.h"
#include "tools/quorport/Report.h"
#include "tools/quorport/TimeText.h"

namespace quordalvane::tool {
namespace {

std::chrono::system_clock::time_point timeOf(std::int64_t milliseconds) {
  return std::chrono::system_clock::time_point(std::chrono::milliseconds(milliseconds));
}

std::string_view nameOf(JobState state) {
  switch (state) {
    case JobState::Printed:
      return nameOf(PrintOutcome::Printed);
    case JobState::Unconfirmed:
      return nameOf(PrintOutcome::Unconfirmed);
    case JobState::Printing:
      return "printing";
    case JobState::Refused:
      break;
  }
  return nameOf(PrintOutcome::Refused);
}

Json jsonOf(const JobRecord& job) {
  return {{"job", job.name},
          {"device", job.device},
          {"bytes", job.bytes},
          {"attempts", job.attempts},
          {"begun", utcText(timeOf(job.begun))},
          {"ended", job.ended ? Json(utcText(timeOf(*job.ended))) : Json(nullptr)},
          {"outcome", nameOf(job.state)},
          {"reason", job.reason}};
}

std::string lineOf(const JobRecord& job) {
  std::string line = localText(timeOf(job.begun)) + "  " + std::string(nameOf(job.state)) + "  " +
                     printable(job.name) + "  " + grouped(job.bytes) + " bytes on " +
                     printable(job.device);
  if (job.attempts > 1) {
    line += ", " + grouped(static_cast<std::uint64_t>(job.attempts)) + " attempts";
  }
  return line + (job.reason.empty() ? "" : ": " + printable(job.reason)) + "\n";
}

void forget(Journal& journal, const std::string& name) {
  switch (journal.forget(name)) {
    case Forgetting::Forgotten:
      return;
    case Forgetting::Unknown:
      throw CommandFailure(ExitCode::Usage, "--forget: the journal has no job " + inQuotes(name));
    case Forgetting::BeingPrinted:
      throw CommandFailure(ExitCode::NotReady,
                           "--forget: the job " + inQuotes(name) +
                               " is being printed; forget it after it has ended");
  }
}

Report reportOn(const std::vector<JobRecord>& jobs) {
  Report report;
  report.json["ok"] = true;
  report.json["jobs"] = Json::array();
  for (const JobRecord& job : jobs) {
    report.json["jobs"].push_back(jsonOf(job));
    report.text += lineOf(job);
  }
  return report;
}

bool isMissing(const std::filesystem::path& file) {
  std::error_code error;
  return !std::filesystem::exists(file, error) && !error;
}

Report lookInto(const std::filesystem::path& file, const JobsOptions& options) {
  if (!options.forget && !options.olderThan && isMissing(file)) {
    return reportOn({});  // the journal is missing, and a query must not create it
  }
  Journal journal(file);
  if (options.forget) {
    forget(journal, *options.forget);
  }
  if (options.olderThan) {
    journal.forgetOlderThan(*options.olderThan);
  }
  return reportOn(journal.jobs());
}

}  // namespace

Report jobs(const Options& options, const Surroundings& /*surroundings*/) {
  try {
    return lookInto(options.jobs.journal ? std::filesystem::path(*options.jobs.journal)
                                         : Journal::defaultFile(),
                    options.jobs);
  } catch (const JournalError& error) {
    throw CommandFailure(ExitCode::NoJournal, printable(error.what()));
  }
}

}  // namespace quordalvane::tool
