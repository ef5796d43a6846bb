#include "tools/process/Descriptors.h"

#include <fcntl.h>
#include <unistd.h>

namespace quordalvane::tool {

void occupyDescriptors(int last) {
  for (int descriptor = STDIN_FILENO; descriptor <= last; ++descriptor) {
    if (::fcntl(descriptor, F_GETFD) < 0) {
      ::open("/dev/null", descriptor == STDIN_FILENO ? O_WRONLY : O_RDONLY);
    }
  }
}

}  // namespace quordalvane::tool
