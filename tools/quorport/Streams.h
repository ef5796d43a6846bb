#pragma once

namespace quordalvane::tool {

/// The descriptors that a command reads from and writes to. They remain the caller's.
struct Streams {
  int in = 0;
  int out = 1;
  int err = 2;
};

}  // namespace quordalvane::tool
