#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>

#include "job/PrintJob.h"
#include "tools/quorport/Commands.h"

namespace quordalvane::tool {

/// The effect of a job's name (`--job`) on its print. Builds without the journal refuse it.
class NamedPrinting {
 public:
  /// Opens the journal and claims the name, waiting for another process that prints the job. Throws
  /// a CommandFailure: ExitCode::Usage for an invalid name or that of other data,
  /// ExitCode::NoJournal if the journal cannot be kept.
  NamedPrinting(const Options& options, const std::string& device,
                std::span<const std::uint8_t> data, const Surroundings& surroundings);
  ~NamedPrinting();
  NamedPrinting(const NamedPrinting&) = delete;
  NamedPrinting& operator=(const NamedPrinting&) = delete;

  /// The journal's answer without printing; null if the job must be run.
  const PrintResult* answer() const;

  /// The options of the job that `run` takes.
  PrintJob::Options recorded(PrintJob::Options options);

  /// Runs the job and records its outcome. Throws a CommandFailure with ExitCode::NoJournal if its
  /// beginning could not be recorded; nothing was sent then.
  PrintResult run(PrintJob& job);

  /// Records that nothing was sent, for this reason.
  void refuse(const std::string& reason);

  /// Adds the facts about the name to the report of the print.
  void addTo(Report& report) const;

 private:
  struct Recording;
  const std::unique_ptr<Recording> recording_;
};

}  // namespace quordalvane::tool
