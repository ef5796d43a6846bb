#pragma once

#include "backends/Scheme.h"

namespace quordalvane::virtuals {

/// The printer that is built in, in this process.
extern const Scheme virtualScheme;

}  // namespace quordalvane::virtuals
