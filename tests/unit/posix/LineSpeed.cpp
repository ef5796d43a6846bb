#include "tests/unit/posix/LineSpeed.h"

// This is a source of its own, because its header and the usual header for terminals exclude each
// other.
#include <asm/termbits.h>
#include <sys/ioctl.h>

namespace quordalvane::posix {

unsigned speedOf(int descriptor) {
  termios2 settings{};
  return ::ioctl(descriptor, TCGETS2, &settings) == 0 ? settings.c_ospeed : 0;
}

}  // namespace quordalvane::posix
