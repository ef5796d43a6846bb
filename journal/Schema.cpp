#include "journal/Schema.h"

#include <iterator>

#include "journal/JournalError.h"
#include "journal/Seal.h"

namespace quordalvane {
namespace {

// The mark that distinguishes a journal from other databases, in the file's head.
constexpr std::int64_t applicationId = 0x71756f72;

// Each step leads from the version of its place to the next. Steps are added and never changed: of
// each earlier version somebody has a journal.
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
    // An answer from the journal names the proof and the obstacle of its attempt. The numbers of
    // obstacles are those of the C interface; 5 is "no proof".
    R"(
    ALTER TABLE attempt ADD COLUMN proof TEXT NOT NULL DEFAULT '';
    ALTER TABLE attempt ADD COLUMN obstacle INTEGER NOT NULL DEFAULT 5;
    )",
    // The moment at which a person was told that the outcome is unknown; a queue then prints only
    // if the person wants it.
    "ALTER TABLE attempt ADD COLUMN told INTEGER;",
};

// A journal that is found to be damaged is left as it was.
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
    throw JournalError(database.file(), "it is no journal: empty, or another program's database");
  }
  if (version > schemaVersion()) {
    throw JournalError(database.file(),
                       "it is of version " + std::to_string(version) +
                           ", which a later program wrote; this one knows versions up to " +
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
