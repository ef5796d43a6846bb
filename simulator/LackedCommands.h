#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "simulator/Bytes.h"

namespace quordalvane::simulator {

/// The commands that a kind of printer does not have, given by their first bytes. A plain value.
class LackedCommands {
 public:
  /// Reads the first two to four bytes of each command in hex, separated by blanks or `+`, like
  /// `1b4c+1d286b`. If `text` is empty or `none`, the result contains no command. If `text` has
  /// another form, throws std::invalid_argument with a message for people.
  static LackedCommands parse(std::string_view text);

  /// Returns true if the complete command `command` is one of the lacked commands.
  bool has(ByteView command) const;

  /// Returns the commands as a text that `parse` accepts.
  std::string text() const;

  bool operator==(const LackedCommands&) const = default;

 private:
  std::vector<Bytes> beginnings_;
};

}  // namespace quordalvane::simulator
