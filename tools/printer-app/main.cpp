#include <string>
#include <vector>

#include "backends/bluez/BluetoothScheme.h"
#include "tools/printer-app/Application.h"
#include "tools/printer-app/DeviceUri.h"

namespace {

using quordalvane::printer_app::deviceOf;
using quordalvane::printer_app::uriOf;

// Replaces the device text after each `-v` by its URI. Users write a device text, but the framework
// accepts only a URI.
std::vector<std::string> withUris(int argc, char** argv) {
  std::vector<std::string> arguments(argv, argv + argc);
  for (std::size_t i = 1; i + 1 < arguments.size(); ++i) {
    if (arguments[i] == "-v" && deviceOf(arguments[i + 1]).empty()) {
      arguments[i + 1] = uriOf(arguments[i + 1]);
    }
  }
  return arguments;
}

}  // namespace

int main(int argc, char** argv) {
  quordalvane::addBluetoothScheme();
  quordalvane::printer_app::addDeviceScheme();
  std::vector<std::string> arguments = withUris(argc, argv);
  std::vector<char*> pointers;
  pointers.reserve(arguments.size() + 1);
  for (std::string& argument : arguments) {
    pointers.push_back(argument.data());
  }
  pointers.push_back(nullptr);
  return papplMainloop(argc, pointers.data(), QUOR_VERSION, "QuorIOPort", 0, nullptr, nullptr,
                       nullptr, nullptr, nullptr, quordalvane::printer_app::makeSystem, nullptr,
                       nullptr);
}
