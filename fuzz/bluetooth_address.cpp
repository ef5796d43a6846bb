#include <regex>
#include <string>

#include "fuzz/FuzzTarget.h"
#include "iphone-IOPort/Util.h"

using namespace quordalvane;
using fuzz::require;

/// The input is a text that may contain a Bluetooth address. The search must find the same address
/// that a regular expression finds.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const std::regex address(
      "(?:^|[^0-9A-Fa-f])((?:[0-9A-Fa-f]{2}:){5}[0-9A-Fa-f]{2})(?![0-9A-Fa-f])");
  const std::string text(data, data + size);
  std::smatch match;
  const std::string expected = std::regex_search(text, match, address) ? match[1].str() : "";
  require(Util::getMACAddressFromString(text) == expected);
  return 0;
}
