#pragma once

#include <functional>
#include <string>
#include <vector>

// A stand-in for the device's accessory service. Each session of an accessory has a connected
// socket of its own.

namespace quordalvane::test {

/// The texts of an accessory, and how a session connects to it.
struct PluggedAccessory {
  std::string name = "Virtual";
  std::string serialNumber = "0001";
  std::string modelNumber = "V1";
  std::string manufacturer = "quor dalvane";
  std::vector<std::string> protocolStrings = {"com.quordalvane.receipt"};
  std::function<int()> connect;  // returns a socket, which the session owns
};

/// Makes this the only accessory of the service.
void plugIn(PluggedAccessory accessory);

/// Removes the accessory from the service.
void unplug();

/// If the argument is true, every call of the service throws an exception of the framework. If it
/// is false, the service answers again.
void letServiceRaise(bool raises);

}  // namespace quordalvane::test
