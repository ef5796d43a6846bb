#pragma once

#include <string>

#include <quordalvane/QuorExport.h>

#include "logging/LogRecord.h"

namespace quordalvane {

/// Appends the record as one JSON object, followed by a line feed. The keys of the object are, in
/// this order: time (ISO 8601, UTC, microseconds), thread, type (the number), typeName, level,
/// object, file, line, method, message. The line is valid UTF-8 without control characters,
/// whatever bytes the texts of the record contain.
QUOR_EXPORT void appendJsonLine(std::string& out, const LogRecord& record);

/// Appends the record as one line for people, followed by a line feed. The line has the fields that
/// `appendJsonLine` writes, in the same order, but not the number of the type. Control characters
/// are escaped.
QUOR_EXPORT void appendReadableLine(std::string& out, const LogRecord& record);

}  // namespace quordalvane
