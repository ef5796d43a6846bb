#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "simulator/Bytes.h"
#include "simulator/Dialect.h"

namespace quordalvane::simulator {

/// A command of a job, or a run of characters.
struct ListedCommand {
  std::uint64_t offset = 0;  ///< where the command begins in the job
  std::uint64_t length = 0;
  /// The name that `nameOf` returns; "text" for characters, "cut off" for an incomplete command.
  std::string name;
  std::string meaning;  ///< the effect in words; for text, the characters
  bool isKnown = true;  ///< true if the printer knows the command
};

/// A part of a job, command by command.
struct Listing {
  std::vector<ListedCommand> commands;
  std::uint64_t next = 0;  ///< the offset of the next command; at the end, the length of the job
};

/// Lists the commands of a job that begin at `from` or later, at most `most` of them.
Listing listCommands(ByteView job, const Dialect& dialect, std::uint64_t from, std::size_t most);

}  // namespace quordalvane::simulator
