#pragma once

#include <string>
#include <vector>

#include <quordalvane/QuorIOPort.h>

#include "tools/quorport/doctor/Finding.h"

namespace quordalvane::tool {

/// Returns the conditions in the status that prevent printing.
Findings findingsIn(const QuorPrinterStatus_2& status);

}  // namespace quordalvane::tool
