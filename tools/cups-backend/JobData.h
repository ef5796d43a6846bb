#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <vector>

namespace quordalvane::cups {

/// Reads the data of a job from `file`, or from standard input if `file` is empty. Throws
/// `std::system_error` if the data cannot be read, and `std::length_error` if there is no data or
/// more than a job can have.
std::vector<std::uint8_t> readJobData(const std::optional<std::filesystem::path>& file);

/// Returns true if no more data can arrive: the data is in `file`, or every filter has closed the
/// pipe to standard input.
bool isJobWhole(const std::optional<std::filesystem::path>& file);

}  // namespace quordalvane::cups
