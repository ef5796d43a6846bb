#pragma once

#include <functional>
#include <string>
#include <vector>

// The accessory service that these tests have in place of the device's. Each session of an
// accessory has a connected socket of its own.

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

/// The service's only accessory is from now on this one.
void plugIn(PluggedAccessory accessory);

/// It has no accessories from now on.
void unplug();

/// The service throws an exception of the framework at every question, or no longer does.
void letServiceRaise(bool raises);

}  // namespace quordalvane::test
