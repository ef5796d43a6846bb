#include "journal/Journal.h"

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <limits>
#include <map>
#include <system_error>

#include "journal/Database.h"
#include "journal/History.h"
#include "journal/JournalFile.h"
#include "journal/Rows.h"
#include "journal/Schema.h"
#include "journal/Seal.h"
#include "locks/ByteLock.h"

namespace quordalvane {
namespace {

constexpr auto longestOpening = std::chrono::seconds(10);

// A process that only looks up or removes a job holds the lock on the job's name no longer than
// this time.
constexpr auto longestMoment = std::chrono::seconds(2);

ByteLock takenForOpening(const std::filesystem::path& file) {
  auto lock = ByteLock::take(lockFileOf(file), offsetOfOpening, modeOfLocks, longestOpening, {});
  if (!lock) {
    throw JournalError(file, "another program has been opening it for ten seconds");
  }
  return std::move(*lock);
}

std::unique_ptr<Database> opened(const std::filesystem::path& file) {
  try {
    const ByteLock lock =
        takenForOpening(file);  // only one process at a time may create or change the tables
    if (!std::filesystem::exists(file)) {
      makeJournal(file);
    }
    auto database = std::make_unique<Database>(file);
    bringUpToDate(*database);
    database->execute("PRAGMA journal_mode = WAL; PRAGMA synchronous = FULL");
    const Snapshot snapshot(*database);  // other processes may print and write during the check
    checkSeal(*database);
    return database;
  } catch (const std::system_error& error) {
    throw JournalError(file, error.code().message());
  }
}

}  // namespace

Journal::Journal(const std::filesystem::path& file)
    : file_(preparedPath(file)), database_(opened(file_)) {}

Journal::~Journal() = default;

std::filesystem::path Journal::defaultFile() {
  const char* const state = std::getenv("XDG_STATE_HOME");
  if (state != nullptr && *state == '/') {  // a relative path is ignored
    return std::filesystem::path(state) / "quorport/jobs.db";
  }
  const char* const home = std::getenv("HOME");
  if (home == nullptr || *home == '\0') {
    throw JournalError("jobs.db", "neither XDG_STATE_HOME nor HOME names a folder for the journal");
  }
  return std::filesystem::path(home) / ".local/state/quorport/jobs.db";
}

std::vector<JobRecord> Journal::jobs() {
  std::map<std::string, std::vector<Attempt>> jobs;
  for (Attempt& attempt : allRows(*database_)) {
    jobs[attempt.name].push_back(std::move(attempt));
  }
  std::vector<JobRecord> records;
  records.reserve(jobs.size());
  for (auto& [name, attempts] : jobs) {
    records.push_back(jobOf(std::move(attempts)));
  }
  return records;
}

// Another process may record the end of the job after `attempts` was read and before the lock on
// the job's name is checked. So the rows are read again until two readings are equal. A printed job
// counts as printed even if a process holds the lock, because no process prints it again.
JobRecord Journal::jobOf(std::vector<Attempt> attempts) {
  while (!attempts.back().ended && !isBeingPrinted(attempts.back().name)) {
    auto later = attemptsOf(attempts.back().name);
    const bool isTheSame = later.empty() || (later.back().number == attempts.back().number &&
                                             later.back().ended == attempts.back().ended);
    if (isTheSame) {
      return recordOf(attempts, false);
    }
    attempts = std::move(later);
  }
  const bool isPrinted = stateOf(decisive(attempts)) == JobState::Printed;
  return recordOf(attempts,
                  !isPrinted && (!attempts.back().ended || isBeingPrinted(attempts.back().name)));
}

Forgetting Journal::forget(const std::string& name) {
  return forgetIfBegunBefore(std::numeric_limits<std::int64_t>::max(), name);
}

std::size_t Journal::forgetOlderThan(std::uint32_t days) {
  const std::int64_t oldest = millisecondsNow() - std::int64_t{days} * 24 * 60 * 60 * 1000;
  std::map<std::string, std::int64_t> lastBegun;
  for (const Attempt& row : allRows(*database_)) {
    lastBegun[row.name] = row.begun;
  }
  return static_cast<std::size_t>(std::ranges::count_if(lastBegun, [&](const auto& job) {
    return job.second < oldest && forgetIfBegunBefore(oldest, job.first) == Forgetting::Forgotten;
  }));
}

/// Removes the job if its last attempt began before `moment`. The time is checked here, under the
/// lock, because another attempt may have begun since the caller read the rows.
Forgetting Journal::forgetIfBegunBefore(std::int64_t moment, const std::string& name) {
  const auto lock = withLocksOf(file_, [&](const auto& locks) {
    return ByteLock::take(locks, lockOffset(name), modeOfLocks, longestMoment, {});
  });
  if (!lock) {
    return Forgetting::BeingPrinted;
  }
  Transaction transaction(*database_);
  const auto rows = rowsOf(*database_, name);
  if (rows.empty() || rows.back().begun >= moment) {
    return Forgetting::Unknown;
  }
  for (const Attempt& row : rows) {
    deleteRow(*database_, row);
  }
  transaction.commit();
  return Forgetting::Forgotten;
}

std::vector<Attempt> Journal::attemptsOf(std::string_view name) {
  return rowsOf(*database_, name);
}

/// Adds `attempt` as a row. If there is a row of the same name whose number is `replaced`, that row
/// is deleted. The rows are read again here, because another process may have changed them after
/// the caller read them.
void Journal::write(const Attempt& attempt, std::int64_t replaced) {
  Transaction transaction(*database_);
  for (const Attempt& row : rowsOf(*database_, attempt.name)) {
    if (row.number == replaced) {
      deleteRow(*database_, row);
    }
  }
  insertRow(*database_, attempt);
  transaction.commit();
}

bool Journal::isBeingPrinted(const std::string& name) const {
  return withLocksOf(file_,
                     [&](const auto& locks) { return ByteLock::isTaken(locks, lockOffset(name)); });
}

}  // namespace quordalvane
