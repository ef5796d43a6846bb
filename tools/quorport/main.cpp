#include <unistd.h>

#include <csignal>

#include "backends/bluez/BluetoothScheme.h"
#include "tools/process/Descriptors.h"
#include "tools/quorport/Run.h"

int main(int argc, char** argv) {
  quordalvane::tool::occupyDescriptors(STDERR_FILENO);
  std::signal(SIGPIPE, SIG_IGN);
  // The signal is ignored, so that a file that grows too large only makes the write fail.
  std::signal(SIGXFSZ, SIG_IGN);
  quordalvane::addBluetoothScheme();
  return quordalvane::tool::run({argv + 1, argv + argc}, {});
}
