#pragma once

#include <string>

namespace quordalvane::printer_app {

/// Convert between a device text and the URI under which the framework stores the device.
/// `deviceOf` returns "" for any other URI.
std::string uriOf(const std::string& device);
std::string deviceOf(const std::string& uri);

/// Registers the scheme of `uriOf` with the framework. The framework can then list the devices that
/// `discoverDevices` finds. It never opens a device; each job opens its own device.
void addDeviceScheme();

}  // namespace quordalvane::printer_app
