#include "journal/Journal.h"

#include <chrono>
#include <cstdlib>
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
    const Snapshot snapshot(*database);  // others may print and write meanwhile
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
    throw JournalError("jobs.db", "neither XDG_STATE_HOME nor HOME gives its folder");
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

// A process may end its job after its rows were read and before its lock is checked. So the rows
// are read again until they do not change any more.
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
  return recordOf(attempts, !attempts.back().ended || isBeingPrinted(attempts.back().name));
}

Forgetting Journal::forget(const std::string& name) {
  const auto lock = withLocksOf(file_, [&](const auto& locks) {
    return ByteLock::tryTake(locks, lockOffset(name), modeOfLocks);
  });
  if (!lock) {
    return Forgetting::BeingPrinted;
  }
  Transaction transaction(*database_);
  const auto rows = rowsOf(*database_, name);
  for (const Attempt& row : rows) {
    deleteRow(*database_, row);
  }
  transaction.commit();
  return rows.empty() ? Forgetting::Unknown : Forgetting::Forgotten;
}

std::size_t Journal::forgetOlderThan(std::uint32_t days) {
  const std::int64_t oldest = millisecondsNow() - std::int64_t{days} * 24 * 60 * 60 * 1000;
  std::size_t count = 0;
  for (const JobRecord& job : jobs()) {
    if (job.begun < oldest && forget(job.name) == Forgetting::Forgotten) {
      ++count;
    }
  }
  return count;
}

std::vector<Attempt> Journal::attemptsOf(std::string_view name) {
  return rowsOf(*database_, name);
}

void Journal::insert(const Attempt& attempt, const Attempt* superseded) {
  Transaction transaction(*database_);
  if (superseded != nullptr) {
    deleteRow(*database_, *superseded);
  }
  insertRow(*database_, attempt);
  transaction.commit();
}

void Journal::replace(const Attempt& before, const Attempt& after) {
  Transaction transaction(*database_);
  replaceRow(*database_, before, after);
  transaction.commit();
}

bool Journal::isBeingPrinted(const std::string& name) const {
  return withLocksOf(file_,
                     [&](const auto& locks) { return ByteLock::isTaken(locks, lockOffset(name)); });
}

}  // namespace quordalvane
