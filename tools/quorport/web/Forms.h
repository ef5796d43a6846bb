#pragma once

#include "tools/quorport/Json.h"

namespace quordalvane::tool {

/// Returns the forms of all settings, faults and actions, from which a page builds its inputs.
Json everyForm();

}  // namespace quordalvane::tool
