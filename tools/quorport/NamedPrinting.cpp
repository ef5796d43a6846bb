#include "tools/quorport/NamedPrinting.h"

#include <chrono>
#include <functional>
#include <nlohmann/json.hpp>
#include <stdexcept>

#include "job/Advice.h"
#include "journal/NamedJob.h"
#include "text/Quoted.h"
#include "tools/quorport/CommandFailure.h"
#include "tools/quorport/Report.h"

namespace quordalvane::tool {
namespace {

// Turns the journal's exceptions into failures of the command.
template <typename Action>
auto told(Action action) {
  try {
    return action();
  } catch (const JournalError& error) {
    throw CommandFailure(ExitCode::NoJournal, printable(error.what()) + "; nothing was sent");
  } catch (const std::invalid_argument& error) {
    throw CommandFailure(ExitCode::Usage,
                         "--job: " + printable(error.what()) + "; nothing was sent");
  }
}

Journal openJournal(const PrintOptions& options) {
  return Journal(options.journal ? std::filesystem::path(*options.journal)
                                 : Journal::defaultFile());
}

}  // namespace

struct NamedPrinting::Recording {
  Recording(const Options& options, const NamedJobRequest& request, ByteView data,
            const Streams& where)
      : streams(where),
        name(request.name),
        journal(openJournal(options.print)),
        job(journal, request, data) {}

  const Streams streams;
  const std::string name;
  Journal journal;
  NamedJob job;
  std::optional<NamedJobResult> result;
};

NamedPrinting::NamedPrinting(const Options& options, const std::string& device, ByteView data,
                             const Surroundings& surroundings)
    : recording_(told([&] {
        const NamedJobRequest request{.name = options.print.job.value_or(""),
                                      .device = device,
                                      .again = options.print.again,
                                      .timeout = std::chrono::milliseconds(options.timeout),
                                      .onWait = [&] {
                                        complain("another process is printing this job: waiting",
                                                 surroundings.streams);
                                      }};
        return std::make_unique<Recording>(options, request, data, surroundings.streams);
      })) {
  recording_->result = recording_->job.answer();
}

NamedPrinting::~NamedPrinting() = default;

const PrintResult* NamedPrinting::answer() const {
  return recording_->job.answer() ? &recording_->job.answer()->result : nullptr;
}

PrintJob::Options NamedPrinting::recorded(PrintJob::Options options) {
  return recording_->job.recorded(std::move(options));
}

PrintResult NamedPrinting::run(PrintJob& job) {
  recording_->result = told([&] { return recording_->job.run(job); });
  return recording_->result->result;
}

void NamedPrinting::refuse(const std::string& reason) {
  PrintResult result;
  result.reason = reason;
  recording_->result = recording_->job.refuse(result);
}

void NamedPrinting::addTo(Report& report) const {
  const NamedJobResult result = recording_->result.value_or(NamedJobResult());
  report.json["job"] = recording_->name;
  report.json["attempt"] = result.attempt;
  report.json["repeated"] = result.isRepeated;
  if (result.isRepeated) {
    report.text = "printed: already printed in attempt " + std::to_string(result.attempt) +
                  "; this time nothing was sent\n";
  }
  if (!result.notRecorded.empty()) {
    complain("the outcome could not be recorded: " + printable(result.notRecorded),
             recording_->streams);
  }
}

}  // namespace quordalvane::tool
