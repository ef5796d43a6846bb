#include "tests/unit/posix/LineSpeed.h"

// These functions have their own source file, because <asm/termbits.h> and <termios.h> cannot be
// included together.
#include <asm/termbits.h>
#include <sys/ioctl.h>

namespace quordalvane::posix {

unsigned speedOf(int descriptor) {
  termios2 settings{};
  return ::ioctl(descriptor, TCGETS2, &settings) == 0 ? settings.c_ospeed : 0;
}

}  // namespace quordalvane::posix
