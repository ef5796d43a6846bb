#pragma once

#include <string>

#include "journal/Attempt.h"
#include "journal/Database.h"

namespace quordalvane {

// If a disk writes only half of a page, a row can vanish from a file that still looks sound, and
// the job of that row would be printed again. Therefore the journal keeps a digest of all its rows,
// the seal.

/// Adds a row to the digest of all rows; if the row was added before, removes it from the digest.
/// The caller must have begun a transaction.
void changeSeal(Database& database, const Attempt& row);

/// Reads the whole file. Throws `JournalError` unless the file is sound and contains exactly the
/// rows that were written.
void checkSeal(Database& database);

}  // namespace quordalvane
