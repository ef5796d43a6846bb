#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace quordalvane::cups {

/// The job that the scheduler has handed to this back end, in its arguments and its environment.
struct BackEndJob {
  std::string uri;      ///< of the queue, with all that an administrator wrote into it
  std::string number;   ///< in the scheduler's lists
  unsigned copies = 1;  ///< to print here; filters have made those of a job in standard input
  std::string name;     ///< of the job in the journal, the same at each start

  /// When the scheduler ended the job, in seconds since 1970. A job that has ended and is printed
  /// is one that a person has sent again.
  std::optional<std::int64_t> ended;

  std::optional<std::filesystem::path> file;  ///< of its data; empty if standard input has them
  bool isOfClass = false;                     ///< another printer takes the job if this one cannot
  std::string standingReasons;                ///< of the queue's printer
  std::filesystem::path journal;

  /// The scheduler's own record of the job; empty if it is not known where it lies.
  std::filesystem::path controlFile;
};

/// Reads them. `variable` gives the text of a variable of the environment, "" if it is not set.
/// Throws `std::invalid_argument`, with a text for people, for arguments that no back end gets, and
/// `JournalError` if the folder of the journal is not known.
BackEndJob parseBackEndJob(const std::vector<std::string>& arguments,
                           const std::function<std::string(const char*)>& variable);

}  // namespace quordalvane::cups
