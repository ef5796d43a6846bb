#include "tools/printer-app/DeviceUri.h"

#include <array>

#include "discovery/DeviceId.h"
#include "discovery/Discovery.h"
#include "tools/printer-app/Pappl.h"

namespace quordalvane::printer_app {
namespace {

constexpr auto scheme = "quor";
constexpr std::size_t longestUri = 1024;

bool listDevices(pappl_device_cb_t take, void* data, pappl_deverror_cb_t tell, void* tellData) {
  const Discovery found = discoverDevices();
  for (const std::string& why : found.unsearched) {
    tell(why.c_str(), tellData);
  }
  for (const FoundDevice& device : found.devices) {
    const std::string id = deviceIdOf(device.maker, device.model, device.serialNumber);
    if (take(device.name.c_str(), uriOf(device.device).c_str(), id.c_str(), data)) {
      return true;
    }
  }
  return false;
}

bool openNothing(pappl_device_t* /*device*/, const char* /*uri*/, const char* /*name*/) {
  return true;
}

void closeNothing(pappl_device_t* /*device*/) {}

// These functions always fail. The framework must not exchange bytes with the printer itself,
// because the framework cannot report the outcome of a job.
ssize_t readNothing(pappl_device_t* /*device*/, void* /*buffer*/, size_t /*size*/) {
  return -1;
}

ssize_t writeNothing(pappl_device_t* /*device*/, const void* /*buffer*/, size_t /*size*/) {
  return -1;
}

}  // namespace

std::string uriOf(const std::string& device) {
  std::array<char, longestUri> uri{};
  httpAssembleURI(HTTP_URI_CODING_ALL, uri.data(), static_cast<int>(uri.size()), scheme, nullptr,
                  "device", 0, ("/" + device).c_str());
  return uri.data();
}

std::string deviceOf(const std::string& uri) {
  std::array<char, 32> found{};
  std::array<char, longestUri> user{};
  std::array<char, longestUri> host{};
  std::array<char, longestUri> place{};
  int port = 0;
  const http_uri_status_t status = httpSeparateURI(
      HTTP_URI_CODING_ALL, uri.c_str(), found.data(), static_cast<int>(found.size()), user.data(),
      static_cast<int>(user.size()), host.data(), static_cast<int>(host.size()), &port,
      place.data(), static_cast<int>(place.size()));
  const bool isOurs = status >= HTTP_URI_STATUS_OK && std::string(scheme) == found.data();
  return isOurs && place[0] == '/' ? place.data() + 1 : "";
}

void addDeviceScheme() {
  papplDeviceAddScheme(scheme, PAPPL_DEVTYPE_CUSTOM_LOCAL, listDevices, openNothing, closeNothing,
                       readNothing, writeNothing, nullptr, nullptr);
}

}  // namespace quordalvane::printer_app
