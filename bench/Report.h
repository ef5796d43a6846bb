#pragma once

#include <iosfwd>
#include <vector>

#include "bench/Row.h"

namespace quordalvane::bench {

/// The rows and the growth as tables for people.
void writeTable(std::ostream& out, const Rows& rows);
void writeTable(std::ostream& out, const GrowthTable& table);

/// The rows for programs.
void writeJson(std::ostream& out, const Rows& rows);

/// The rows as a picture of bars: ours against the limit.
void writePicture(std::ostream& out, const Rows& rows);

}  // namespace quordalvane::bench
