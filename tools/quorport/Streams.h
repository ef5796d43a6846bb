#pragma once

#include <string>

namespace quordalvane::tool {

/// The descriptors that a command reads and writes. The caller remains their owner.
struct Streams {
  int in = 0;
  int out = 1;
  int err = 2;
};

/// Writes `line`, a message for the user, to standard error, after the command's name.
void complain(const std::string& line, const Streams& streams);

}  // namespace quordalvane::tool
