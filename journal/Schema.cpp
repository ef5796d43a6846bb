#include "journal/Schema.h"

#include <iterator>

#include "journal/JournalError.h"
#include "journal/Seal.h"

namespace quordalvane {
namespace {

// A number in the head of the file, which distinguishes a journal from other databases.
constexpr std::int64_t applicationId = 0x71756f72;

// Step number n converts version n to version n + 1. Steps are added but never changed, because
// journals of every earlier version exist.
constexpr const char* steps[] = {
    R"(
    CREATE TABLE attempt (
      name TEXT NOT NULL,
      number INTEGER NOT NULL,
      bytes INTEGER NOT NULL,
      sha256 BLOB NOT NULL,
      device TEXT NOT NULL,
      begun INTEGER NOT NULL,
      ended INTEGER,
      outcome TEXT NOT NULL,
      accepted INTEGER NOT NULL,
      reason TEXT NOT NULL,
      PRIMARY KEY (name, number)
    ) STRICT, WITHOUT ROWID;
    CREATE TABLE seal (digest BLOB NOT NULL) STRICT;
    INSERT INTO seal VALUES (zeroblob(32));
    PRAGMA application_id = 0x71756f72;
    )",
    // Adds the proof and the obstacle of an attempt, because an answer from the journal contains
    // both. The numbers of the obstacles are those of the C interface; 5 is "no proof".
    R"(
    ALTER TABLE attempt ADD COLUMN proof TEXT NOT NULL DEFAULT '';
    ALTER TABLE attempt ADD COLUMN obstacle INTEGER NOT NULL DEFAULT 5;
    )",
    // Adds the time at which a person was told that the outcome is unknown. After this time a print
    // queue prints the job only if the person asks for it.
    "ALTER TABLE attempt ADD COLUMN told INTEGER;",
};

// If the journal turns out to be damaged, the transaction is not committed, so the file is
// unchanged.
void migrate(Database& database, std::int64_t version) {
  database.execute("PRAGMA synchronous = FULL");
  Transaction transaction(database);
  for (; version < schemaVersion(); ++version) {
    database.execute(steps[version]);
  }
  database.execute(("PRAGMA user_version = " + std::to_string(version)).c_str());
  checkSeal(database);
  transaction.commit();
}

void refuseWhatIsNoJournal(Database& database, std::int64_t version) {
  if (version <= 0 || database.number("PRAGMA application_id") != applicationId) {
    throw JournalError(database.file(),
                       "it is not a journal, but an empty file or another program's database");
  }
  if (version > schemaVersion()) {
    throw JournalError(database.file(),
                       "a newer release of this program wrote the journal in version " +
                           std::to_string(version) + "; this release knows versions up to " +
                           std::to_string(schemaVersion()));
  }
}

}  // namespace

std::int64_t schemaVersion() {
  return std::ssize(steps);
}

void makeTables(Database& database) {
  migrate(database, 0);
}

void bringUpToDate(Database& database) {
  const std::int64_t version = database.number("PRAGMA user_version");
  refuseWhatIsNoJournal(database, version);
  if (version < schemaVersion()) {
    migrate(database, version);
  }
}

}  // namespace quordalvane
