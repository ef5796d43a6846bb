#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "job/ByteView.h"
#include "job/PrintJob.h"
#include "tools/quorport/Commands.h"

namespace quordalvane::tool {

/// Prints a job under a name (`--job`) and keeps it in the journal. In builds without the journal
/// the constructor refuses the name.
class NamedPrinting {
 public:
  /// Opens the journal and reserves the name. Waits if another process prints the job of this name.
  /// Throws a CommandFailure: with ExitCode::Usage if the name is invalid or belongs to other data,
  /// with ExitCode::NoJournal if the journal cannot be used.
  NamedPrinting(const Options& options, const std::string& device, ByteView data,
                const Surroundings& surroundings);
  ~NamedPrinting();
  NamedPrinting(const NamedPrinting&) = delete;
  NamedPrinting& operator=(const NamedPrinting&) = delete;

  /// Returns the outcome that the journal already knows; null if the job must be printed.
  const PrintResult* answer() const;

  /// Adds to `options` the functions that write the journal. The job that `run` prints must have
  /// the resulting options.
  PrintJob::Options recorded(PrintJob::Options options);

  /// Prints the job and records its outcome. Throws a CommandFailure with ExitCode::NoJournal,
  /// before anything is sent, if the beginning could not be recorded.
  PrintResult run(PrintJob& job);

  /// Records that nothing was sent, with the reason.
  void refuse(const std::string& reason);

  /// Adds the name, the attempt and similar facts to the report of `print`.
  void addTo(Report& report) const;

 private:
  struct Recording;
  const std::unique_ptr<Recording> recording_;
};

}  // namespace quordalvane::tool
