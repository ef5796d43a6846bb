#pragma once

// The port uses the parsers of the printers' replies only through this header, which offers
// CalculateStatusLength, BuildParsedStatus, BuildParsedStatusESCPOS with StatusType,
// parseFirmwareInfo, parseDipSwitchInfo, and the bits of an ESC/POS status byte. The headers of the
// parsers declare all of these, so the parsers do not depend on the port.

#include "parsers/ReplyParsers.h"   // IWYU pragma: export
#include "parsers/StatusParsers.h"  // IWYU pragma: export
