#include "tools/cups-backend/Witness.h"

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

namespace quordalvane::cups {
namespace {

int orThrow(int result) {
  if (result < 0) {
    throw std::system_error(errno, std::generic_category(), "no process can be started");
  }
  return result;
}

// Closes all descriptors except the pipe and standard error. If this process kept any other
// descriptor open, a program that waits until the descriptor is closed would have to wait for this
// process.
void keepOnly(int pipe) {
  ::dup2(pipe, STDIN_FILENO);
  ::close(STDOUT_FILENO);
  ::close_range(STDERR_FILENO + 1, ~0U, 0);
}

bool isDismissed() {
  char word = 0;
  ssize_t count = 0;
  bool isAnyWord = false;
  while ((count = ::read(STDIN_FILENO, &word, 1)) > 0 || (count < 0 && errno == EINTR)) {
    isAnyWord = isAnyWord || count > 0;
  }
  return isAnyWord;
}

}  // namespace

Witness::Witness(const std::function<void()>& stopQueue) {
  int ends[2];
  orThrow(::pipe2(ends, O_CLOEXEC));
  const pid_t between = orThrow(::fork());
  if (between == 0) {
    if (::fork() == 0) {
      ::setsid();
      keepOnly(ends[0]);
      if (!isDismissed()) {
        stopQueue();
      }
    }
    ::_exit(0);
  }
  ::waitpid(between, nullptr, 0);
  ::close(ends[0]);
  words_ = ends[1];
}

void Witness::dismiss() const {
  const char word = '.';
  while (::write(words_, &word, 1) < 0 && errno == EINTR) {
  }
}

}  // namespace quordalvane::cups
