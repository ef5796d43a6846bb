#pragma once

#include <stdexcept>
#include <string>

#include "tools/quorport/ExitCode.h"

namespace quordalvane::tool {

/// Thrown by a command that cannot do its task; the process ends with `code`.
class CommandFailure : public std::runtime_error {
 public:
  CommandFailure(ExitCode code, const std::string& text) : std::runtime_error(text), code_(code) {}
  ExitCode code() const { return code_; }

 private:
  ExitCode code_;
};

}  // namespace quordalvane::tool
