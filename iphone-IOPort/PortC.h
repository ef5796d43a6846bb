#pragma once

// The port's one door to the parsers of the printers' replies: CalculateStatusLength,
// BuildParsedStatus, BuildParsedStatusESCPOS with StatusType, parseFirmwareInfo,
// parseDipSwitchInfo, and the bits of an ESC/POS status byte. The parsers declare them, so that the
// parsers know nothing of the port.

#include "parsers/ReplyParsers.h"   // IWYU pragma: export
#include "parsers/StatusParsers.h"  // IWYU pragma: export
