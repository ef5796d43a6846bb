#pragma once

#include <cstdint>

#include "simulator/Bytes.h"
#include "simulator/Dialect.h"

namespace quordalvane::simulator {

/// Returns the least total length, in bytes, of the command that starts with `bytes`. `bytes` must
/// not be empty. If the result equals the size of `bytes`, the command is complete. If the result
/// is larger, call this function again when `bytes` has this size.
///
/// A byte that starts no command counts as a command of length one. If a printer of this dialect
/// does not know the command, the command ends with the first byte that distinguishes it from all
/// known commands.
std::uint64_t leastCommandLength(ByteView bytes, const Dialect& dialect);

/// Returns true if a printer of this dialect knows the command `bytes`, which must be complete.
bool isKnownCommand(ByteView bytes, const Dialect& dialect);

}  // namespace quordalvane::simulator
