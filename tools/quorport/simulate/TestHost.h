#pragma once

#include <memory>

#include "simulator/PrinterState.h"
#include "tools/quorport/simulate/Line.h"

namespace quordalvane::tool {

/// A host that sends a test receipt for that printer and leaves. Throws std::system_error if the
/// system has no descriptor left.
std::unique_ptr<Line> testHost(const simulator::PrinterState& printer);

}  // namespace quordalvane::tool
