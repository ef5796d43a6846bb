#pragma once

#include <vector>

#include "journal/Attempt.h"
#include "journal/Database.h"

namespace quordalvane {

/// The rows of one name, in their order.
std::vector<Attempt> rowsOf(Database& database, std::string_view name);

/// All rows, by name and number.
std::vector<Attempt> allRows(Database& database);

// These change the seal with the row. They run in a transaction.

void insertRow(Database& database, const Attempt& row);
void replaceRow(Database& database, const Attempt& before, const Attempt& after);
void deleteRow(Database& database, const Attempt& row);

}  // namespace quordalvane
