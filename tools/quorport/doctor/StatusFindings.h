#pragma once

#include <string>
#include <vector>

#include <quordalvane/QuorIOPort.h>

#include "tools/quorport/doctor/Finding.h"

namespace quordalvane::tool {

/// The reasons that keep a printer that answers from printing.
Findings findingsIn(const QuorPrinterStatus_2& status);

}  // namespace quordalvane::tool
