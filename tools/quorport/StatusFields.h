#pragma once

#include <string>
#include <vector>

#include <quordalvane/QuorIOPort.h>

#include "tools/quorport/Json.h"

namespace quordalvane::tool {

/// Returns the record as an object: every field by its name, in order. `raw` is the reply in hex
/// digits.
Json jsonOf(const QuorPrinterStatus_2& status);

/// Returns remarks about the printer that a person can read. The first remark says whether the
/// printer can print, and if not, why.
std::vector<std::string> remarks(const QuorPrinterStatus_2& status);

/// Returns the result of `remarks` as lines of text.
std::string describe(const QuorPrinterStatus_2& status);

/// Returns the record as text, with one line for each field.
std::string describeEveryField(const QuorPrinterStatus_2& status);

}  // namespace quordalvane::tool
