#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "tools/quorport/Streams.h"

namespace quordalvane::tool {

/// Reads the whole file, or standard input if `file` is "-". Throws a CommandFailure with
/// ExitCode::Usage if the file cannot be read, is empty or is larger than any print job.
std::vector<std::uint8_t> readJob(const std::string& file, const Streams& streams);

}  // namespace quordalvane::tool
