#pragma once

#include <string>

#include "tools/quorport/Printer.h"

namespace quordalvane::tool {

/// Whether the record was filled from what begins as a status block of line mode does. The port
/// itself goes by the length alone, so that the words of another device may pass for a block.
bool isStatusBlock(const QuorPrinterStatus_2& status);

/// Asks the printer for its status. `level` is only logged. Throws a Failure where nothing came, or
/// something that is no status.
QuorPrinterStatus_2 askForStatus(Printer& printer, std::uint32_t level);

/// The failure of an exchange that begins with a status and came to nothing: a port without a known
/// emulation cannot ask for one; else Printer::failure says it.
Failure failureWithoutStatus(Printer& printer, const std::string& otherwise);

}  // namespace quordalvane::tool
