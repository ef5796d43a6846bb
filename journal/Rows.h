#pragma once

#include <vector>

#include "journal/Attempt.h"
#include "journal/Database.h"

namespace quordalvane {

/// Returns the rows of one name, ordered by the number of the attempt.
std::vector<Attempt> rowsOf(Database& database, std::string_view name);

/// Returns all rows, ordered by name and number.
std::vector<Attempt> allRows(Database& database);

// Each of these functions inserts or deletes a row, and also changes the seal, the digest of all
// rows (see Seal.h). The caller must have begun a transaction.

void insertRow(Database& database, const Attempt& row);
void deleteRow(Database& database, const Attempt& row);

}  // namespace quordalvane
