#pragma once

#include <cstdint>
#include <string>

#include "simulator/Bytes.h"

namespace quordalvane::simulator {

/// Each byte as two lower-case hex digits, with a blank between bytes.
std::string hexText(ByteView bytes);

}  // namespace quordalvane::simulator
