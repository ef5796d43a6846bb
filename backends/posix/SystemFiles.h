#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace quordalvane::posix {

/// The paths of what is in the folder, in no order; empty if it cannot be read.
std::vector<std::filesystem::path> entriesOf(const std::filesystem::path& folder);

/// The beginning of a file in which the system describes a device, without the end of its line; ""
/// if it cannot be read. A device may have given the content, so its length is bounded.
std::string contentOf(const std::filesystem::path& file);

}  // namespace quordalvane::posix
