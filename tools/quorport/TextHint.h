#pragma once

#include "job/ByteView.h"
#include "tools/quorport/Streams.h"

namespace quordalvane::tool {

/// Warns on standard error if the bytes are UTF-8 text with characters outside ASCII, which the
/// printer would print wrongly.
void hintAtText(ByteView job, const Streams& streams);

}  // namespace quordalvane::tool
