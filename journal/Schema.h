#pragma once

#include "journal/Database.h"

namespace quordalvane {

/// The version of the tables that this program keeps.
std::int64_t schemaVersion();

/// Makes the tables in a database that is empty and nobody else's. When it returns, all of them are
/// in that one file, on disk. Raises `JournalError`.
void makeTables(Database& database);

/// Takes the tables of an older version over, with all that they hold. Raises `JournalError` for a
/// later version and for a database of something else, which are left as they are. Nobody else may
/// be opening the file.
void bringUpToDate(Database& database);

}  // namespace quordalvane
