#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "tools/quorport/ExitCode.h"

namespace quordalvane::tool {

/// A fault, and advice about it.
struct Finding {
  std::string_view cause;  ///< the fault's name, on which scripts rely
  ExitCode code;           ///< the exit status of a command that fails for this reason
  std::string text;        ///< the fault in a sentence, for people
  std::string advice;      ///< the next step, for people
};

using Findings = std::vector<Finding>;

}  // namespace quordalvane::tool
