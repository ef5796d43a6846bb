#pragma once

#include <map>
#include <string>

namespace quordalvane::bench {

/// How many microseconds one ESC/POS status takes in two other ways that are at hand on most
/// machines: a script on a blocking socket, and a shell command for each status. A way whose
/// program is not installed is missing.
std::map<std::string, double> measurePeers();

}  // namespace quordalvane::bench
