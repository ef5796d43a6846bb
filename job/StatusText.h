#pragma once

#include <string>

#include <quordalvane/QuorIOPort.h>

namespace quordalvane {

/// Returns a text for people that says why the printer does not print: "cover open", "paper out,
/// cutter error". Returns "off line" if the printer gives no reason, and "" if the printer is on
/// line.
std::string whyOffline(const QuorPrinterStatus_2& status);

/// Returns the errors in the status, in the words of `whyOffline`, or "" if there are no errors.
/// The printer may have errors while it is on line.
std::string errorsIn(const QuorPrinterStatus_2& status);

/// Returns why the printer is not ready: its errors, or "off line". Returns "" if the printer is
/// ready.
std::string whyNotReady(const QuorPrinterStatus_2& status);

}  // namespace quordalvane
