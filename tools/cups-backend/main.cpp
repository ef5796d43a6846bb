#include <cups/sidechannel.h>

#include <csignal>

#include "backends/bluez/BluetoothScheme.h"
#include "tools/cups-backend/BackEnd.h"
#include "tools/process/Descriptors.h"

int main(int argc, char** argv) {
  quordalvane::tool::occupyDescriptors(CUPS_SC_FD);
  std::signal(SIGPIPE, SIG_IGN);
  std::signal(SIGXFSZ, SIG_IGN);  // a full file is then an error of the write, not the end
  quordalvane::addBluetoothScheme();
  return quordalvane::cups::run({argv, argv + argc});
}
