#pragma once

#include <span>
#include <string_view>

#include <quordalvane/QuorExport.h>

#include "backends/Scheme.h"

namespace quordalvane {

/// Adds the scheme, which must last, after the others; one that is in the list already is not added
/// again. For the beginning of a program, before it has threads.
QUOR_EXPORT void addScheme(const Scheme& scheme);

/// All schemes, in the order in which a help text lists them.
std::span<const Scheme* const> schemes();

/// The scheme of that name; null if there is none.
const Scheme* findScheme(std::string_view name);

}  // namespace quordalvane
