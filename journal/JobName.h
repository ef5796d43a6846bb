#pragma once

#include <string_view>

#include <quordalvane/QuorExport.h>

namespace quordalvane {

/// Checks the name of a job. A valid name has 1 to 255 bytes of UTF-8 without control characters.
/// Throws `std::invalid_argument`, with a message for people, if the name is invalid. Names are
/// compared byte by byte.
QUOR_EXPORT void checkJobName(std::string_view name);

}  // namespace quordalvane
