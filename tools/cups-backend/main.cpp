#include <cups/sidechannel.h>

#include <csignal>

#include "backends/bluez/BluetoothScheme.h"
#include "tools/cups-backend/BackEnd.h"
#include "tools/process/Descriptors.h"

int main(int argc, char** argv) {
  quordalvane::tool::occupyDescriptors(CUPS_SC_FD);
  std::signal(SIGPIPE, SIG_IGN);
  // The signal is ignored, so that a file that grows too large only makes the write fail.
  std::signal(SIGXFSZ, SIG_IGN);
  quordalvane::addBluetoothScheme();
  return quordalvane::cups::run({argv, argv + argc});
}
