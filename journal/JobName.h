#pragma once

#include <string_view>

#include <quordalvane/QuorExport.h>

namespace quordalvane {

/// Throws `std::invalid_argument`, with a text for people, unless `name` may name a job: 1 to 255
/// bytes of UTF-8 without control characters. Names are compared byte by byte.
QUOR_EXPORT void checkJobName(std::string_view name);

}  // namespace quordalvane
