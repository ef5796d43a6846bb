#pragma once

#include <memory>

#include "simulator/PrinterState.h"
#include "tools/quorport/simulate/Line.h"

namespace quordalvane::tool {

/// Returns a line on which a host sends a test receipt for this printer and then leaves. Throws
/// std::system_error if the system has no descriptor left.
std::unique_ptr<Line> testHost(const simulator::PrinterState& printer);

}  // namespace quordalvane::tool
