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

/// Reads the arguments that follow the command's own name. Returns the command to run, or the text
/// of --help or --version. Throws a CommandFailure with ExitCode::Usage that names the fault and
/// the right form.
std::variant<Order, std::string> parseCommandLine(const std::vector<std::string>& arguments);

/// The command that the arguments name, even if the rest of them makes no sense: null, or the first
/// argument that is a command's name.
const Command* commandNamedIn(const std::vector<std::string>& arguments);

/// Whether the arguments ask for JSON, even if the rest of them makes no sense.
bool askForJson(const std::vector<std::string>& arguments);

/// The name of the job that the arguments give, even if the rest of them makes no sense; null if
/// they give none.
std::optional<std::string> jobNamedIn(const std::vector<std::string>& arguments);

}  // namespace quordalvane::tool
