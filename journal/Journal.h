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

/// The state of a job in a journal.
enum class JobState {
  Refused,      ///< no attempt sent any byte of the job
  Unconfirmed,  ///< nobody knows whether the job is on paper
  Printing,     ///< a running process is printing the job
  Printed,      ///< the printer confirmed that the job was printed
};

/// One job of a journal, after its latest attempt.
struct JobRecord {
  std::string name;
  std::string device;         ///< the device text of the job's printer
  std::uint64_t bytes = 0;    ///< the length of the job's data
  std::int64_t attempts = 0;  ///< the number of attempts so far

  /// The beginning of the latest attempt, as the system's clock showed it, in milliseconds since
  /// 1970, UTC.
  std::int64_t begun = 0;

  /// The end of the latest attempt, in milliseconds since 1970, UTC; null if the end was not
  /// recorded.
  std::optional<std::int64_t> ended;

  JobState state = JobState::Refused;
  std::string reason;  ///< why the job was not printed, for a person; "" if it was printed
};

/// The result of removing a job from the journal.
enum class Forgetting {
  Forgotten,     ///< the job was removed
  Unknown,       ///< there was no job of this name
  BeingPrinted,  ///< the job was not removed, because a process is printing it
};

/// A file that records named jobs, so that their outcomes outlive the process. It is an SQLite
/// database. It does not contain the data of a job, only the length and the SHA-256 of the data.
///
/// When a function returns, its changes are on disk. Several processes may use one file at the same
/// time. Only one thread at a time may use a `Journal` object. Every failure throws `JournalError`;
/// the file is then unchanged.
class QUOR_EXPORT Journal {
 public:
  /// Opens `file` and checks all of its content. If the file is missing, it is created, as are the
  /// folders above it; only this user may read and write the new file. A second file, for locks, is
  /// created in the same folder; the name of this file ends in `.locks`. Throws `JournalError` if
  /// the file cannot be written, is damaged, is empty, is not a journal, was written by a later
  /// version of this library, is on a network file system, or has more than one hard link.
  explicit Journal(const std::filesystem::path& file);

  ~Journal();
  Journal(const Journal&) = delete;
  Journal& operator=(const Journal&) = delete;

  /// Returns the path of `quorport/jobs.db` in `$XDG_STATE_HOME`, or in `~/.local/state` if this
  /// variable is not set. Throws `JournalError` if both this variable and `$HOME` are not set.
  static std::filesystem::path defaultFile();

  /// Returns the path of the file, with all symbolic links resolved.
  const std::filesystem::path& file() const { return file_; }

  /// Returns all jobs, ordered by name.
  std::vector<JobRecord> jobs();

  /// Removes a job. A later job with this name counts as new and is printed, even if the removed
  /// job is on paper already. If another process is printing the job, waits at most two seconds
  /// until that process has finished. If it has not finished by then, removes nothing and returns
  /// BeingPrinted.
  Forgetting forget(const std::string& name);

  /// Removes the jobs whose last attempt began more than `days` days ago, with any outcome. A job
  /// that is being printed is not removed. Returns how many jobs it removed.
  std::size_t forgetOlderThan(std::uint32_t days);

 private:
  friend class NamedJob;

  std::vector<Attempt> attemptsOf(std::string_view name);
  void write(const Attempt& attempt, std::int64_t replaced);
  Forgetting forgetIfBegunBefore(std::int64_t moment, const std::string& name);
  JobRecord jobOf(std::vector<Attempt> attempts);
  bool isBeingPrinted(const std::string& name) const;

  const std::filesystem::path file_;
  const std::unique_ptr<Database> database_;
};

}  // namespace quordalvane
