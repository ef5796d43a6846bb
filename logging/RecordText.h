#pragma once

#include <string>

#include <quordalvane/QuorExport.h>

#include "logging/LogRecord.h"

namespace quordalvane {

/// Appends the record as one JSON object and a line feed. Its keys, in this order: time (ISO 8601,
/// UTC, microseconds), thread, type (the number), typeName, level, object, file, line, method,
/// message. The line is valid UTF-8 and holds no other control character, whatever the record's
/// texts hold.
QUOR_EXPORT void appendJsonLine(std::string& out, const LogRecord& record);

/// Appends the record as one line for people: the same fields in the same order, without the number
/// of the type, with control characters escaped.
QUOR_EXPORT void appendReadableLine(std::string& out, const LogRecord& record);

}  // namespace quordalvane
