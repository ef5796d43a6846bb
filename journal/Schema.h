#pragma once

#include "journal/Database.h"

namespace quordalvane {

/// The version of the tables that this program keeps.
std::int64_t schemaVersion();

/// Makes the tables in a database that is empty and nobody else's, and has it keep its changes in a
/// log until they are copied over (WAL). Raises `JournalError`.
void makeTables(Database& database);

/// Takes the tables of an older version over, with all that they hold. Raises `JournalError` for a
/// later version and for a database of something else, which are left as they are. Nobody else may
/// be opening the file.
void bringUpToDate(Database& database);

}  // namespace quordalvane
