#pragma once

#include <memory>

#include "simulator/PrinterState.h"
#include "tools/quorport/simulate/Line.h"

namespace quordalvane::tool {

/// Returns a connection to a host that has sent a test receipt for this printer and has left.
/// Throws std::system_error if the system has no descriptor left.
std::unique_ptr<Line> testHost(const simulator::PrinterState& printer);

}  // namespace quordalvane::tool
