#pragma once

#include <cstdint>

#include "simulator/Bytes.h"
#include "simulator/Dialect.h"

namespace quordalvane::simulator {

/// Returns the least total length, in bytes, of the command that starts with `bytes`. `bytes` must
/// not be empty. If the result equals the count of `bytes`, the command is complete. If it is
/// larger, that many bytes must arrive before more is known.
///
/// A byte that starts no command counts as a command of length one. If a printer of this dialect
/// does not know a command, the command ends with the byte that shows this.
std::uint64_t leastCommandLength(ByteView bytes, const Dialect& dialect);

/// Returns true if a printer of this dialect knows the command `bytes`, which must be complete.
bool isKnownCommand(ByteView bytes, const Dialect& dialect);

}  // namespace quordalvane::simulator
