#pragma once

#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "tools/quorport/Commands.h"
#include "tools/quorport/Options.h"

namespace quordalvane::tool {

/// A command to run, with its options.
struct Order {
  const Command* command;
  Options options;
};

/// Reads the arguments that follow the program's name. Returns the command to run, or the text of
/// --help or --version. Throws a CommandFailure with ExitCode::Usage, whose text names the fault
/// and the right form.
std::variant<Order, std::string> parseCommandLine(const std::vector<std::string>& arguments);

/// Returns the first argument that is a command's name; null if there is none. This works even if
/// other arguments are invalid.
const Command* commandNamedIn(const std::vector<std::string>& arguments);

/// Returns true if the arguments ask for JSON. This works even if other arguments are invalid.
bool askForJson(const std::vector<std::string>& arguments);

/// Returns the name that the arguments give to the job; empty if they give none. This works even if
/// other arguments are invalid.
std::optional<std::string> jobNamedIn(const std::vector<std::string>& arguments);

}  // namespace quordalvane::tool
