#pragma once

#include <string>
#include <vector>

namespace quordalvane::cups {

/// Runs the back end with the arguments of its process, and returns the exit status. Lists printers
/// if there is no job.
int run(const std::vector<std::string>& arguments);

}  // namespace quordalvane::cups
