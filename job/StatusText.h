#pragma once

#include <string>

#include <quordalvane/QuorIOPort.h>

namespace quordalvane {

/// The reasons that keep the printer from printing, in words: "cover open", "paper out, cutter
/// error". "off line" if the printer gives no reason; "" for a printer that is on line.
std::string whyOffline(const QuorPrinterStatus_2& status);

/// The errors that the status reports, in the same words, whether the printer is on line or not; ""
/// for a status without an error.
std::string errorsIn(const QuorPrinterStatus_2& status);

}  // namespace quordalvane
