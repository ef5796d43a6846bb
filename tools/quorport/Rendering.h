#pragma once

#include <cstdint>
#include <vector>

#include "tools/quorport/RenderOptions.h"
#include "tools/quorport/Streams.h"

namespace quordalvane::tool {

/// Turns the contents of a file into bytes for the printer. Without options the bytes are
/// unchanged. Reports on standard error the parts that the paper will not show correctly. Throws a
/// CommandFailure with ExitCode::Usage if the contents do not fit the options, or if this build
/// cannot render them.
std::vector<std::uint8_t> rendered(const std::vector<std::uint8_t>& contents,
                                   const RenderOptions& options, const Streams& streams);

}  // namespace quordalvane::tool
