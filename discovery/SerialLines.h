#pragma once

#include <filesystem>
#include <vector>

#include "discovery/FoundDevice.h"

namespace quordalvane {

/// The places of the system where serial lines show; a test has its own.
struct SerialRoots {
  std::filesystem::path sys = "/sys";
  std::filesystem::path dev = "/dev";
};

/// The serial lines of which there is hardware, in the order of their names. They are not opened,
/// so nothing shows what is connected to one. A line that the system knows by a name that lasts is
/// named by that one.
std::vector<FoundDevice> serialLines(const SerialRoots& roots = {});

}  // namespace quordalvane
