#pragma once

#include <cstdint>
#include <span>

#include "tools/quorport/Streams.h"

namespace quordalvane::tool {

/// Warns on standard error if the bytes are UTF-8 text with characters outside ASCII, which the
/// printer would print wrongly.
void hintAtText(std::span<const std::uint8_t> job, const Streams& streams);

}  // namespace quordalvane::tool
