#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace quordalvane::posix {

/// Returns the paths of the files in a folder, in no particular order. Returns an empty list if the
/// folder cannot be read.
std::vector<std::filesystem::path> entriesOf(const std::filesystem::path& folder);

/// Returns the beginning of a file in which the system describes a device, without the line end.
/// The content may come from the device, so its length is limited. Returns "" if the file cannot be
/// read.
std::string contentOf(const std::filesystem::path& file);

}  // namespace quordalvane::posix
