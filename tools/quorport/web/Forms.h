#pragma once

#include "tools/quorport/Json.h"

namespace quordalvane::tool {

/// Returns descriptions of all flags, settings, faults and actions. A page builds its input fields
/// from these descriptions.
Json everyForm();

}  // namespace quordalvane::tool
