#include "tools/process/Descriptors.h"

#include <fcntl.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

namespace quordalvane::tool {

void occupyDescriptors(int last) {
  for (int descriptor = STDIN_FILENO; descriptor <= last; ++descriptor) {
    if (::fcntl(descriptor, F_GETFD) < 0) {
      ::open("/dev/null", descriptor == STDIN_FILENO ? O_WRONLY : O_RDONLY);
    }
  }
}

int openEvent() {
  const int descriptor = ::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK);
  if (descriptor < 0) {
    throw std::system_error(errno, std::generic_category());
  }
  return descriptor;
}

}  // namespace quordalvane::tool
