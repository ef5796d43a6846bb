#include <stdexcept>
#include <string>

#include "backends/HostAndPort.h"
#include "fuzz/FuzzTarget.h"
#include "fuzz/Text.h"
#include "tools/quorport/simulate/SocketListener.h"

using namespace quordalvane;
using fuzz::require;

namespace {

std::string written(const std::string& host, std::uint16_t port) {
  const bool inBrackets = host.find(':') != std::string::npos;
  return (inBrackets ? "[" + host + "]:" : host + ":") + std::to_string(port);
}

}  // namespace

/// The input is an address, to connect to or to listen at. An address that was read must be the
/// same after it is written and read again. The text of a refusal must be printable.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string text(data, data + size);
  try {
    const HostAndPort address = parseHostAndPort(text);
    require(!address.host.empty() && address.port != 0);
    if (address.host.find_first_of("[]") == std::string::npos) {
      const HostAndPort again = parseHostAndPort(written(address.host, address.port));
      require(again.host == address.host && again.port == address.port);
    }
  } catch (const std::invalid_argument& error) {
    require(fuzz::isHarmless(error.what()));
  }
  if (const auto address = tool::parseListenAddress(text)) {
    require(!address->host.empty());
    // An address without a host must accept connections from this machine only.
    const bool namesHost = text.rfind(':') != std::string::npos && text.rfind(':') > 0;
    require(namesHost || address->host == "127.0.0.1");
  }
  return 0;
}
