#pragma once

#include "journal/Database.h"

namespace quordalvane {

/// Returns the version of the tables that this library writes.
std::int64_t schemaVersion();

/// Creates the tables in an empty database that no other process uses. When the function returns,
/// the file of the database contains all tables and is on disk. Throws `JournalError` if this
/// fails.
void makeTables(Database& database);

/// Converts the tables of an older version, with all their rows. Changes nothing and throws
/// `JournalError` if the version is later than this library's or the database is not a journal. No
/// other process may be opening the file at the same time.
void bringUpToDate(Database& database);

}  // namespace quordalvane
