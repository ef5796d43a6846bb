#pragma once

#include <string>

#include <quordalvane/QuorIOPort.h>

namespace quordalvane {

/// Returns in words why the printer does not print: "cover open", "paper out, cutter error".
/// Returns "off line" if the printer gives no reason, and "" if it is on line.
std::string whyOffline(const QuorPrinterStatus_2& status);

/// Returns the errors in the status, in the same words, even if the printer is on line; "" if there
/// are none.
std::string errorsIn(const QuorPrinterStatus_2& status);

/// Why the printer is not ready: its errors, or "off line"; "" for one that is ready.
std::string whyNotReady(const QuorPrinterStatus_2& status);

}  // namespace quordalvane
