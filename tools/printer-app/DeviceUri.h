#pragma once

#include <string>

namespace quordalvane::printer_app {

/// Convert between a device text and the URI under which the framework stores the device.
/// `deviceOf` returns "" for any other URI.
std::string uriOf(const std::string& device);
std::string deviceOf(const std::string& uri);

/// Registers these URIs with the framework, and lets it list the devices that `discoverDevices`
/// finds. The framework never opens a device; each job opens its own.
void addDeviceScheme();

}  // namespace quordalvane::printer_app
