#pragma once

#include "journal/Database.h"

namespace quordalvane {

/// The version of the tables that this program keeps.
std::int64_t schemaVersion();

/// Makes the tables in a database that is empty and used by this process alone. When it returns,
/// all of them are in that one file, on disk. Throws `JournalError`.
void makeTables(Database& database);

/// Converts the tables of an older version, with all their rows. Throws `JournalError` for a
/// later version and for a database of something else, which are not changed. Nobody else may be
/// opening the file.
void bringUpToDate(Database& database);

}  // namespace quordalvane
