#pragma once

#include <string_view>
#include <vector>

#include "simulator/Bytes.h"

namespace quordalvane::simulator {

/// The commands that a kind of printer does not have, named by their first bytes. A plain value.
class LackedCommands {
 public:
  /// Reads two to four bytes in hex for each, joined by blanks or `+`, like `1b4c+1d286b`; an empty
  /// text or `none` is the empty set. Throws std::invalid_argument, with a text for people, for any
  /// other text.
  static LackedCommands parse(std::string_view text);

  /// Whether this whole command is one of them.
  bool has(ByteView command) const;

  bool operator==(const LackedCommands&) const = default;

 private:
  std::vector<Bytes> beginnings_;
};

}  // namespace quordalvane::simulator
