#pragma once

#include <string>
#include <vector>

#include <quordalvane/QuorIOPort.h>

#include "tools/quorport/Json.h"

namespace quordalvane::tool {

/// The record as an object: every field by its name, in order. `raw` is in hex digits, and as long
/// as the reply was.
Json jsonOf(const QuorPrinterStatus_2& status);

/// Remarks about the printer for people: first whether it can print, and if not, why.
std::vector<std::string> remarks(const QuorPrinterStatus_2& status);

/// Returns the remarks as lines of text.
std::string describe(const QuorPrinterStatus_2& status);

/// Every field of the record as a line of text.
std::string describeEveryField(const QuorPrinterStatus_2& status);

}  // namespace quordalvane::tool
