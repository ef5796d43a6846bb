#pragma once

#include <span>
#include <string_view>

#include <quordalvane/QuorExport.h>

#include "backends/Scheme.h"

namespace quordalvane {

/// Adds `scheme` at the end of the list, unless it is in the list already. The scheme must exist
/// until the process ends. A program must call this function at its beginning, before other threads
/// exist.
QUOR_EXPORT void addScheme(const Scheme& scheme);

/// Returns all schemes, in the order in which help texts list them.
std::span<const Scheme* const> schemes();

/// Returns the scheme with this name; null if no scheme has it.
const Scheme* findScheme(std::string_view name);

}  // namespace quordalvane
