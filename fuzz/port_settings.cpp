#include <string>

#include "fuzz/FuzzTarget.h"
#include "iphone-IOPort/ExternalAccessoryPort.h"
#include "tests/support/VirtualPlatform.h"

using namespace quordalvane;
using fuzz::require;

namespace {

/// Returns the expected time-out: the number after the first letter d that has a digit after it.
/// Returns -1 if there is no such number, or if the number is above 255.
std::int64_t expectedDataTimeout(const std::string& settings) {
  constexpr auto digits = "0123456789";
  std::size_t start = settings.find('d');
  while (start != std::string::npos && settings.find_first_of(digits, start) != start + 1) {
    start = settings.find('d', start + 1);
  }
  if (start == std::string::npos) {
    return -1;
  }
  const std::size_t end = settings.find_first_not_of(digits, start + 1);
  const std::size_t length = end == std::string::npos ? end : end - start - 1;
  std::string number = settings.substr(start + 1, length);
  number.erase(0, number.find_first_not_of('0'));
  if (number.size() > 3) {
    return -1;
  }
  const std::int64_t value = number.empty() ? 0 : std::stoi(number);
  return value <= 255 ? value : -1;
}

}  // namespace

/// The input is a settings text. The port must read the same data time-out from it as
/// `expectedDataTimeout`.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const auto platform = std::make_shared<test::VirtualPlatform>();
  const std::string settings(data, data + size);
  const auto port =
      ExternalAccessoryPort::initWithPortName("BT:", settings, 1000, ZKEmulationESCPOS, platform);
  require(port != nullptr && port->dataTimeoutSeconds() == expectedDataTimeout(settings));
  return 0;
}
