#pragma once

#include <cstdint>

#include "simulator/Bytes.h"
#include "simulator/Dialect.h"

namespace quordalvane::simulator {

/// How long the command is that starts with `bytes` (at least one), as far as they show it: the
/// least total length in bytes. A command is complete when this equals the count of its bytes; a
/// larger value means that so many must arrive before more is known. A byte that starts no command
/// is a command of length one. An unknown command ends with the byte that shows it to be unknown. A
/// command that a printer of that dialect does not know is unknown.
std::uint64_t leastCommandLength(ByteView bytes, const Dialect& dialect);

/// True if a printer of that dialect knows a command that begins like this whole one.
bool isKnownCommand(ByteView bytes, const Dialect& dialect);

}  // namespace quordalvane::simulator
