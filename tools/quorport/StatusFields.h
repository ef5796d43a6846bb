#pragma once

#include <string>

#include <quordalvane/QuorIOPort.h>

#include "tools/quorport/Report.h"

namespace quordalvane::tool {

/// The record, every field by its name and in its order; `raw` as hex, as many bytes as there are.
Json jsonOf(const QuorPrinterStatus_2& status);

/// What is to be known of the printer, in lines: first whether it can print and what is wrong.
std::string describe(const QuorPrinterStatus_2& status);

/// Every field of the record, a line each.
std::string describeEveryField(const QuorPrinterStatus_2& status);

}  // namespace quordalvane::tool
