#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "tools/quorport/ExitCode.h"

namespace quordalvane::tool {

/// A fault, and advice about it.
struct Finding {
  std::string_view cause;  ///< a name that scripts rely on
  ExitCode code;           ///< the exit status of a command that fails for this reason
  std::string text;        ///< the fault, for people
  std::string advice;      ///< for people: the next step
};

using Findings = std::vector<Finding>;

}  // namespace quordalvane::tool
