#pragma once

#include <cstdint>
#include <span>

#include "tools/quorport/Streams.h"

namespace quordalvane::tool {

/// Says on standard error that bytes which are UTF-8 text beyond ASCII will not print as such.
void hintAtText(std::span<const std::uint8_t> job, const Streams& streams);

}  // namespace quordalvane::tool
