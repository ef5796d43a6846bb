#pragma once

#include "tools/quorport/Json.h"

namespace quordalvane::tool {

/// All that can be set on a printer, with what each takes, so that a page can ask for it.
Json everyForm();

}  // namespace quordalvane::tool
