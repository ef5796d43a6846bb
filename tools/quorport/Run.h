#pragma once

#include <string>
#include <vector>

#include "tools/quorport/Streams.h"

namespace quordalvane::tool {

/// Runs the command that `arguments`, without the program's own name, ask for. Returns the exit
/// code. SIGINT, SIGTERM and SIGHUP end the command meanwhile: in an orderly way, with a return,
/// if a port is open, otherwise by ending the process with the code for that.
int run(const std::vector<std::string>& arguments, const Streams& streams);

}  // namespace quordalvane::tool
