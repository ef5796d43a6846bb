#pragma once

#include <string>
#include <vector>

#include "tools/quorport/Streams.h"

namespace quordalvane::tool {

/// Runs the command that `arguments` name; the program's own name is not among them. Returns the
/// exit status. SIGINT, SIGTERM and SIGHUP end the command. If a port is open, it is closed and the
/// function returns; otherwise the process ends at once, with the exit status of the signal.
int run(const std::vector<std::string>& arguments, const Streams& streams);

}  // namespace quordalvane::tool
