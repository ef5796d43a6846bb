#pragma once

// The port uses the parsers of the printers' replies only through this header. The header offers
// CalculateStatusLength, BuildParsedStatus, BuildParsedStatusESCPOS and its parameter type
// StatusType, parseFirmwareInfo, parseDipSwitchInfo, and the bits of an ESC/POS status byte. All of
// these are declared in the folder parsers/, so that the parsers need no header of the port.

#include "parsers/ReplyParsers.h"   // IWYU pragma: export
#include "parsers/StatusParsers.h"  // IWYU pragma: export
