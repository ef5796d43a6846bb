#pragma once

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

/// Reads the arguments behind the command's own name. Returns what to run, or a text that was asked
/// for (--help, --version). Throws a Failure with ExitCode::Usage that names what is wrong and what
/// would be right.
std::variant<Order, std::string> parseCommandLine(const std::vector<std::string>& arguments);

/// The command that the arguments name, even if the rest of them makes no sense: null, or the first
/// argument that is a command's name.
const Command* commandNamedIn(const std::vector<std::string>& arguments);

/// Whether the arguments ask for JSON, also where the rest of them makes no sense.
bool askForJson(const std::vector<std::string>& arguments);

}  // namespace quordalvane::tool
