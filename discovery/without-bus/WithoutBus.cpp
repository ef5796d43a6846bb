// Replaces the searches over D-Bus in builds without the D-Bus library.
#include <stdexcept>

#include "discovery/BluetoothDevices.h"
#include "discovery/NetworkDevices.h"

namespace quordalvane {
namespace {

[[noreturn]] void refuse() {
  throw std::runtime_error("this program was built without libsdbus-c++-dev");
}

}  // namespace

std::vector<FoundDevice> bluetoothDevices(std::chrono::milliseconds /*limit*/) {
  refuse();
}

std::vector<FoundDevice> networkDevices(std::chrono::milliseconds /*limit*/) {
  refuse();
}

}  // namespace quordalvane
