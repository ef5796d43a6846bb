#pragma once

#include <string>

namespace quordalvane::tool {

/// How a device is written, a scheme a line: the part of --help that the back ends decide.
std::string schemeHelp();

}  // namespace quordalvane::tool
