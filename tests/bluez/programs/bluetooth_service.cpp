// The stand-in for the Bluetooth service as a separate process, for tests of the command:
//
//     bluetooth_service PRINTER [KEY=VALUE ...]
//
// Each connection leads to the local socket PRINTER. The program writes "ready" and then serves
// until it is killed.
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <iostream>
#include <string>

#include "tests/bluez/standins/BluetoothService.h"

namespace {

using quordalvane::test::Connecting;
using quordalvane::test::StandInDevice;
using quordalvane::test::StandInPlan;

int connectTo(const std::string& path) {
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  path.copy(address.sun_path, sizeof address.sun_path - 1);
  const int number = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
  ::connect(number, reinterpret_cast<const sockaddr*>(&address), sizeof address);
  return number;
}

bool set(StandInPlan& plan, const std::string& key, const std::string& value) {
  StandInDevice& device = plan.devices.back();
  if (key == "adapter") {
    plan.isAdapterOn = value == "none" ? std::nullopt : std::optional(value == "on");
  } else if (key == "address") {
    device.address = value;
  } else if (key == "alias") {
    device.alias = value;
  } else if (key == "paired") {
    device.isPaired = value == "yes";
  } else if (key == "connected") {
    device.isConnected = value == "yes";
  } else if (key == "class") {
    device.deviceClass = static_cast<std::uint32_t>(std::stoul(value, nullptr, 16));
  } else if (key == "services") {
    device.services = {value};
  } else if (key == "another") {
    plan.devices.push_back({.address = value});
  } else if (key == "never") {
    plan.connecting = Connecting::Never;
  } else if (key == "error") {
    plan.connecting = Connecting::Refuses;
    plan.errorName = value.substr(0, value.find(' '));
    plan.errorText = value.substr(value.find(' ') + 1);
  } else if (key == "taken") {
    plan.profilesTaken = std::stoi(value);
  } else {
    return false;
  }
  return true;
}

}  // namespace

int main(int count, char** arguments) {
  if (count < 2) {
    return 2;
  }
  StandInPlan plan;
  plan.connect = [path = std::string(arguments[1])] { return connectTo(path); };
  for (int i = 2; i < count; ++i) {
    const std::string argument = arguments[i];
    const std::size_t equals = argument.find('=');
    if (!set(plan, argument.substr(0, equals), argument.substr(equals + 1))) {
      return 2;
    }
  }
  const quordalvane::test::StandInBluetooth service(plan);
  std::cout << "ready" << std::endl;
  ::pause();
}
