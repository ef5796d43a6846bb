#pragma once

#include <string>

namespace quordalvane::tool {

/// Returns the part of --help that lists the schemes, one in each line, with the syntax of their
/// devices.
std::string schemeHelp();

}  // namespace quordalvane::tool
