#pragma once

#include <string>

namespace quordalvane::tool {

/// The descriptors that a command reads and writes. They remain the caller's.
struct Streams {
  int in = 0;
  int out = 1;
  int err = 2;
};

/// Writes a line for people to standard error, with the command's name first.
void complain(const std::string& line, const Streams& streams);

}  // namespace quordalvane::tool
