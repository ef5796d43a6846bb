#pragma once

#include <filesystem>
#include <vector>

#include "discovery/FoundDevice.h"

namespace quordalvane {

/// The folders in which the system lists serial lines; a test has its own.
struct SerialRoots {
  std::filesystem::path sys = "/sys";
  std::filesystem::path dev = "/dev";
};

/// The serial lines that have hardware, in the order of their names. They are not opened, so the
/// device at the other end remains unknown. A line that has a permanent name in the system is given
/// by that name.
std::vector<FoundDevice> serialLines(const SerialRoots& roots = {});

}  // namespace quordalvane
