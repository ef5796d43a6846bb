#pragma once

#include <string>

namespace quordalvane::printer_app {

/// The URI under which the framework keeps a device, and the device text in such a URI; the text is
/// "" for any other URI.
/// @{
std::string uriOf(const std::string& device);
std::string deviceOf(const std::string& uri);
/// @}

/// Makes the framework know devices of such URIs, and find those that `discoverDevices` finds. It
/// never opens one: a job does.
void addDeviceScheme();

}  // namespace quordalvane::printer_app
