#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "tools/quorport/Report.h"

namespace quordalvane::tool {

/// One thing that is wrong, and what to do about it.
struct Finding {
  std::string_view cause;  ///< its name, on which scripts rely
  ExitCode code;           ///< how a command ends because of it
  std::string text;        ///< what is wrong, for people
  std::string advice;      ///< what to do, for people
};

using Findings = std::vector<Finding>;

}  // namespace quordalvane::tool
