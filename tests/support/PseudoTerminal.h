#pragma once

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <string>
#include <system_error>

namespace quordalvane::test {

/// A new pseudo-terminal: the descriptor of its open side, and the path of its other side.
struct PseudoTerminal {
  int master;
  std::string line;
};

/// Throws std::system_error if the system has no pseudo-terminals, for example because /dev/pts is
/// missing.
inline PseudoTerminal openPseudoTerminal() {
  const int master = ::posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC);
  const bool isReady = master >= 0 && ::grantpt(master) == 0 && ::unlockpt(master) == 0;
  const char* const line = isReady ? ::ptsname(master) : nullptr;
  if (line == nullptr) {
    const std::error_code why(errno, std::generic_category());
    ::close(master);
    throw std::system_error(why, "this system gave no pseudo-terminal");
  }
  return {master, line};
}

}  // namespace quordalvane::test
