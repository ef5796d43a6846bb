#pragma once

#include <map>
#include <string>

namespace quordalvane::bench {

/// Returns how many microseconds one ESC/POS status query takes in two other ways that most
/// machines offer: a script on a blocking socket, and a shell command for each status. A way whose
/// program is not installed is missing from the result.
std::map<std::string, double> measurePeers();

}  // namespace quordalvane::bench
