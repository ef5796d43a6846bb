#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace quordalvane::cups {

/// The job that the scheduler has handed to this back end, in the arguments and the environment of
/// the process.
struct BackEndJob {
  std::string uri;      ///< the URI of the queue, as the administrator wrote it
  std::string number;   ///< the job's number in the scheduler
  unsigned copies = 1;  ///< the count of copies to print here; 1 if filters have made the copies
  std::string name;     ///< the job's name in the journal, the same in each attempt

  /// The time at which the scheduler last ended this job, in seconds since 1970; empty if the job
  /// has never ended. The scheduler starts an ended job again only if a person asks for it.
  std::optional<std::int64_t> ended;

  /// The file with the job's data; empty if standard input has the data.
  std::optional<std::filesystem::path> file;
  /// True if the job was sent to a class of printers. Another printer of the class may then print
  /// the job if this printer cannot.
  bool isOfClass = false;
  /// The state reasons (keywords of the print system) that the queue's printer has now.
  std::string standingReasons;
  std::filesystem::path journal;

  /// The file with the scheduler's own record of the job; empty if the path of the file is unknown.
  std::filesystem::path controlFile;
};

/// Reads the job. `variable` returns the text of an environment variable, "" if it is not set.
/// Throws `std::invalid_argument` if a scheduler would never pass these arguments; the exception's
/// text is for people. Throws `JournalError` if the folder of the journal is unknown.
BackEndJob parseBackEndJob(const std::vector<std::string>& arguments,
                           const std::function<std::string(const char*)>& variable);

}  // namespace quordalvane::cups
