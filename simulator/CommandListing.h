#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "simulator/Bytes.h"
#include "simulator/Dialect.h"

namespace quordalvane::simulator {

/// One command of a job, or a run of characters.
struct ListedCommand {
  std::uint64_t offset = 0;  ///< of its first byte in the job
  std::uint64_t length = 0;
  std::string name;     ///< see `nameOf`; "text" for characters, "cut off" for one without its end
  std::string meaning;  ///< in words; of characters themselves, in ASCII
  bool isKnown = true;  ///< to a printer of that dialect
};

/// A stretch of a job, command by command.
struct Listing {
  std::vector<ListedCommand> commands;
  std::uint64_t next = 0;  ///< the offset at which it continues; the job's length at its end
};

/// The commands of a job that begin at `from` or after it, at most `most`.
Listing listCommands(ByteView job, const Dialect& dialect, std::uint64_t from, std::size_t most);

}  // namespace quordalvane::simulator
