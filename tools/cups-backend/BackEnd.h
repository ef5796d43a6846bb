#pragma once

#include <string>
#include <vector>

namespace quordalvane::cups {

/// Runs the back end with the arguments of its process. Lists the printers if the arguments name no
/// job. Returns the exit status.
int run(const std::vector<std::string>& arguments);

}  // namespace quordalvane::cups
