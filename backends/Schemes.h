#pragma once

#include <span>
#include <string_view>

#include "backends/Scheme.h"

namespace quordalvane {

/// All schemes, in the order in which a help text lists them.
std::span<const Scheme* const> schemes();

/// The scheme of that name; null if there is none.
const Scheme* findScheme(std::string_view name);

}  // namespace quordalvane
