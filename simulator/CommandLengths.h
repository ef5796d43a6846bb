#pragma once

#include <cstdint>

#include "simulator/Bytes.h"
#include "simulator/Dialect.h"

namespace quordalvane::simulator {

/// The least total length of the command that starts with `bytes`, as far as they show it, in
/// bytes. `bytes` must not be empty. If the result equals the count of `bytes`, the command is
/// complete. If it is larger, that many bytes must arrive before more is known.
///
/// A byte that starts no command counts as a command of length one. A command that a printer of
/// this dialect does not know is unknown, and ends with the byte that shows this.
std::uint64_t leastCommandLength(ByteView bytes, const Dialect& dialect);

/// True if a printer of this dialect knows the command `bytes`, which must be complete.
bool isKnownCommand(ByteView bytes, const Dialect& dialect);

}  // namespace quordalvane::simulator
