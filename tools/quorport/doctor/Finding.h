#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "tools/quorport/ExitCode.h"

namespace quordalvane::tool {

/// One fault, and the advice about it.
struct Finding {
  std::string_view cause;  ///< its name, on which scripts rely
  ExitCode code;           ///< how a command ends because of it
  std::string text;        ///< the fault, for people
  std::string advice;      ///< the next step, for people
};

using Findings = std::vector<Finding>;

}  // namespace quordalvane::tool
