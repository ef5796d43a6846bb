#pragma once

#include <string>

#include "journal/Attempt.h"
#include "journal/Database.h"

namespace quordalvane {

// A disk that wrote half a page can hide a row without making the file look odd, and a job whose
// row is hidden would be printed again. Therefore the journal keeps a digest of all its rows.

/// Takes a row into the digest of all rows, or out of it; in a transaction.
void changeSeal(Database& database, const Attempt& row);

/// Throws `JournalError` unless the file is sound and holds exactly the rows that were written.
/// Reads all of it.
void checkSeal(Database& database);

}  // namespace quordalvane
