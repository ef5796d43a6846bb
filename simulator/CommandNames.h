#pragma once

#include <string>
#include <string_view>

#include "simulator/Bytes.h"

namespace quordalvane::simulator {

/// The name of a command, for people.
struct CommandName {
  std::string name;          ///< the manuals' name, like "GS V"; "text" for a character
  std::string_view meaning;  ///< the command's effect in a few words; empty if unknown
};

/// Returns the name of one complete command, or of a single character.
CommandName nameOf(ByteView command);

}  // namespace quordalvane::simulator
