#pragma once

#include <string>
#include <vector>

#include <quordalvane/QuorIOPort.h>

#include "tools/quorport/Json.h"

namespace quordalvane::tool {

/// The record, every field by its name and in its order; `raw` as hex, as many bytes as there are.
Json jsonOf(const QuorPrinterStatus_2& status);

/// Remarks about the printer: first whether it can print and why not.
std::vector<std::string> remarks(const QuorPrinterStatus_2& status);

/// The same in lines.
std::string describe(const QuorPrinterStatus_2& status);

/// Every field of the record, a line each.
std::string describeEveryField(const QuorPrinterStatus_2& status);

}  // namespace quordalvane::tool
