#pragma once

#include "backends/Scheme.h"

namespace quordalvane::virtuals {

/// The scheme of the built-in virtual printer, which runs in this process.
extern const Scheme virtualScheme;

}  // namespace quordalvane::virtuals
