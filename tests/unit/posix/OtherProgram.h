#pragma once

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/file.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <string>

namespace quordalvane::posix {

inline bool lock(int line) {
  return ::flock(line, LOCK_EX) == 0;
}

/// Another process, which has the file at `path` open until this object is destroyed. The process
/// calls `hold` after it has opened the file; by default, `hold` locks the file.
class OtherProgram {
 public:
  explicit OtherProgram(const std::string& path, bool (*hold)(int line) = lock) {
    int ready[2];
    EXPECT_EQ(::pipe2(ready, O_CLOEXEC), 0);
    process_ = ::fork();
    if (process_ == 0) {
      const int line = ::open(path.c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC);
      const bool isHeld = hold(line) && ::write(ready[1], "x", 1) == 1;
      while (isHeld) {
        ::pause();
      }
      ::_exit(1);
    }
    char byte = 0;
    EXPECT_EQ(::read(ready[0], &byte, 1), 1);
    ::close(ready[0]);
    ::close(ready[1]);
  }
  ~OtherProgram() {
    ::kill(process_, SIGKILL);
    ::waitpid(process_, nullptr, 0);
  }

  pid_t process() const { return process_; }

 private:
  pid_t process_ = -1;
};

}  // namespace quordalvane::posix
