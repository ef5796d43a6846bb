#pragma once

#include <string>
#include <vector>

#include <quordalvane/QuorIOPort.h>

#include "tools/quorport/Report.h"

namespace quordalvane::tool {

/// The record, every field by its name and in its order; `raw` as hex, as many bytes as there are.
Json jsonOf(const QuorPrinterStatus_2& status);

/// What is to be known of the printer, a remark each: first whether it can print and what is wrong.
std::vector<std::string> remarks(const QuorPrinterStatus_2& status);

/// The same in lines.
std::string describe(const QuorPrinterStatus_2& status);

/// Every field of the record, a line each.
std::string describeEveryField(const QuorPrinterStatus_2& status);

}  // namespace quordalvane::tool
