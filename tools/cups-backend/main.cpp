#include <cups/sidechannel.h>

#include <csignal>

#include "backends/bluez/BluetoothScheme.h"
#include "tools/cups-backend/BackEnd.h"
#include "tools/process/Descriptors.h"

int main(int argc, char** argv) {
  quordalvane::tool::occupyDescriptors(CUPS_SC_FD);
  std::signal(SIGPIPE, SIG_IGN);
  std::signal(SIGXFSZ, SIG_IGN);  // a file that grows too large is an error of its write
  quordalvane::addBluetoothScheme();
  return quordalvane::cups::run({argv, argv + argc});
}
