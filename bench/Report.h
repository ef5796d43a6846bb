#pragma once

#include <iosfwd>
#include <vector>

#include "bench/Row.h"

namespace quordalvane::bench {

/// Write the rows, or the growth, as a table for people.
void writeTable(std::ostream& out, const Rows& rows);
void writeTable(std::ostream& out, const GrowthTable& table);

/// Writes the rows as JSON.
void writeJson(std::ostream& out, const Rows& rows);

/// Writes the rows as a picture of bars, which compare our figures with the limits.
void writePicture(std::ostream& out, const Rows& rows);

}  // namespace quordalvane::bench
