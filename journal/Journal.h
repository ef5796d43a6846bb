#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <quordalvane/QuorExport.h>

#include "journal/JournalError.h"

namespace quordalvane {

class Database;
struct Attempt;

/// The facts that a journal holds about a job.
enum class JobState {
  Refused,      ///< no byte of it was sent in any attempt
  Unconfirmed,  ///< nobody knows whether it is on paper
  Printing,     ///< a process that lives prints it
  Printed,      ///< the printer confirmed it
};

/// One job of a journal, after its latest attempt.
struct JobRecord {
  std::string name;
  std::string device;                 ///< the text of the device that it was for
  std::uint64_t bytes = 0;            ///< the length of its data
  std::int64_t attempts = 0;          ///< so many there were
  std::int64_t begun = 0;             ///< milliseconds since 1970, UTC, by the clock of then
  std::optional<std::int64_t> ended;  ///< likewise; empty if its end was not recorded
  JobState state = JobState::Refused;
  std::string reason;  ///< why it was not printed, for a person; "" when it was
};

/// The result of a wish to forget a job.
enum class Forgetting {
  Forgotten,     ///< the journal knows nothing of it any more
  Unknown,       ///< there was no such job
  BeingPrinted,  ///< a process prints it; the journal is as it was
};

/// The file in which jobs are recorded under their names, so that their outcomes outlive the
/// process: a database of SQLite. Of a job's data it keeps the length and the SHA-256.
///
/// The changes of a function are on disk when it returns. Many processes may use one file at once.
/// A `Journal` is for one thread at a time. Every failure throws `JournalError`, and the file is
/// then as it was.
class QUOR_EXPORT Journal {
 public:
  /// Opens `file`, and checks all of its content. A missing file is made, for this user alone to
  /// read and write, and so are missing folders above it. A second file beside it has a name that
  /// ends in `.locks`. Throws `JournalError` if the file cannot be written, is damaged, empty, no
  /// journal or of a later version of this library, or lies on a network file system.
  explicit Journal(const std::filesystem::path& file);

  ~Journal();
  Journal(const Journal&) = delete;
  Journal& operator=(const Journal&) = delete;

  /// `quorport/jobs.db` in `$XDG_STATE_HOME`, or in `~/.local/state` if that is not set. Throws
  /// `JournalError` if `$HOME` is not set either.
  static std::filesystem::path defaultFile();

  /// The file, by its one path through all links.
  const std::filesystem::path& file() const { return file_; }

  /// All jobs, by name.
  std::vector<JobRecord> jobs();

  /// Removes a job. A later call under its name prints it, even if it is on paper.
  Forgetting forget(const std::string& name);

  /// Removes the jobs whose last attempt began more than `days` days ago by the present clock,
  /// with any outcome, except those that are being printed. Returns how many.
  std::size_t forgetOlderThan(std::uint32_t days);

 private:
  friend class NamedJob;

  std::vector<Attempt> attemptsOf(std::string_view name);
  void insert(const Attempt& attempt, const Attempt* superseded);
  void replace(const Attempt& before, const Attempt& after);
  JobRecord jobOf(std::vector<Attempt> attempts);
  bool isBeingPrinted(const std::string& name) const;

  const std::filesystem::path file_;
  const std::unique_ptr<Database> database_;
};

}  // namespace quordalvane
