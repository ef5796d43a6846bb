#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <vector>

namespace quordalvane::cups {

/// The data of a job: all of `file`, or of standard input if there is none. Throws
/// `std::system_error` if they cannot be read, and `std::length_error` if there are none or too
/// many to be a job.
std::vector<std::uint8_t> readJobData(const std::optional<std::filesystem::path>& file);

}  // namespace quordalvane::cups
