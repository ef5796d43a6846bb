#pragma once

#include <filesystem>
#include <vector>

#include "discovery/FoundDevice.h"

namespace quordalvane {

/// The folders in which the system lists serial lines. Tests use their own folders.
struct SerialRoots {
  std::filesystem::path sys = "/sys";
  std::filesystem::path dev = "/dev";
};

/// Returns the serial lines that have hardware, ordered by name. The function does not open the
/// lines, so the device that is connected to a line is unknown. If the system has a permanent name
/// for a line, the device text contains this name.
std::vector<FoundDevice> serialLines(const SerialRoots& roots = {});

}  // namespace quordalvane
