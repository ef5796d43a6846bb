#include <fcntl.h>
#include <unistd.h>

#include <csignal>

#include "backends/bluez/BluetoothScheme.h"
#include "tools/quorport/Run.h"

namespace {

// Without these the next file that is opened, a printer for example, would take the place of a
// standard stream that the parent process left closed. Each is opened the wrong way round, so that
// using it fails as it would if it were closed.
void occupyStandardDescriptors() {
  for (int descriptor = STDIN_FILENO; descriptor <= STDERR_FILENO; ++descriptor) {
    if (::fcntl(descriptor, F_GETFD) < 0) {
      ::open("/dev/null", descriptor == STDIN_FILENO ? O_WRONLY : O_RDONLY);
    }
  }
}

}  // namespace

int main(int argc, char** argv) {
  occupyStandardDescriptors();
  std::signal(SIGPIPE, SIG_IGN);
  std::signal(SIGXFSZ, SIG_IGN);  // a file that grows too large is an error of its write
  quordalvane::addBluetoothScheme();
  return quordalvane::tool::run({argv + 1, argv + argc}, {});
}
